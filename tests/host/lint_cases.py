"""Stores for lint_test.py: of each type a clean one, and small changes that each make one finding."""

import dataclasses
import pathlib
import shutil
import sqlite3
import tempfile

SAMPLES = pathlib.Path(__file__).resolve().parents[2] / "samples"
SCHEMA = (SAMPLES / "schema" / "sqlite.sql").read_text("utf-8")
SETTINGS = "[DataBase]\nDbType=SQLITE\nDBName=./store.db\n"

GOODS = """<Goods>
  <Row PluCode="COLA" Name="Cola" Price="10.00" CAT="DRINK" BRD="SUN"/>
  <Row PluCode="BEER" Name="Beer" Price="10.00" CAT="DRINK" BRD="MOON"/>
  <Row PluCode="BREAD" Name="Bread" Price="3.00" CAT="FOOD" BRD="SUN"/>
</Goods>
"""


def rule(number="R", kind="PTXS", mode="PT", primary="PT", date="2024-06-01", groups=""):
    """A rule's XML. Its header stands on lines 2 and 3, shops on 5, times on 8 and 9, what else it has from 11 on."""
    return f"""<Rules>
  <Rule BillNo="{number}" ProType="{kind}" ProMode="{mode}" Primary="{primary}" JzDate="{date}"
        MaxYhType="0" MaxYhValue="0" Remark="">
    <OrgFilter>
      <Row OrgCode="*"/>
    </OrgFilter>
    <ProTime>
      <Row StartDate="2024-01-01" EndDate="2099-12-31" StartTime="" EndTime="" Frequency="DAY"
           WeekDays="" MonthDays=""/>
    </ProTime>
{groups}  </Rule>
</Rules>
"""


LISTED = """    <ProList ConAreaType="ALL" MaxDiscount="20" DscIntoPlu="0">
      <PluAddAction>
        <Row SerialNo="1" BaseConNum="20" BaseDscNum="5" AddConNum="20" AddDscNum="5" SaleMaxIn="0"/>
      </PluAddAction>
      <CouponType CouponTypeCode="C5" BgnDate="2024-01-01" EndDate="2099-12-31" LimitType="0" IsDenom="1"/>
      <CouponDenomination>
        <Row Denomination="5"/>
      </CouponDenomination>
    </ProList>
"""
PAID = """    <ProCtr>
      <Row SerialNo="1" PayType="CARD" PriceTotal="6"/>
    </ProCtr>
    <CardNoFilter>
      <Row SerialNo="1" BgnCardNo="6200" EndCardNo="6299"/>
    </CardNoFilter>
    <PluAction>
      <Row SerialNo="1" DisPrice="30" DisRate="28"/>
    </PluAction>
"""

DIRECT = "insert into tProPrjDirectProAct (BillNo,SerialNo,PluCode,PluType,InRange,DscType,DscPrice,DscRate,SaleCount) "
GIFT = "insert into tProMzScheme (BillNo,SerialNo,PluCode,BaseConType,BaseConNum,BaseDscType,BaseDscNum,SaleMaxIn,DscPrice) "
GOODS_TIER = "insert into tProMzPluAct (BillNo,SerialNo,DataId,PluCode,PluType,BaseConType,BaseConNum,BaseDscType,BaseDscNum) "
LIST = "insert into tpromzlist (BillNo,ListCode,ConAreaType) "
LIST_TIER = "insert into tProMzDiscountAct (BillNo,ListCode,BaseMoney,BaseDscMoney,AddMoney,AddDscMoney,SaleMaxIn) "
LISTED_GOODS = "insert into tProMzConPluSet (BillNo,ListCode,SerialNo,DataId,PluCode,PluType,InRange) "
SET = "insert into tProPrjCombProAct (BillNo,SerialNo,SaleCount,PriceType,PriceTotal) "
SLOT = "insert into tProPrjCombProAct (BillNo,SerialNo,ProActCode,IsRequired) "
SET_GOODS = "insert into tProPrjCombPluSet (BillNo,SerialNo,ProActCode,PluCode,PluType,SaleCount,DscType,DscPrice,DscRate) "

# Of each type a rule that is in order, and its rows.
CLEAN = {
    "PTXS": (
        rule(),
        DIRECT + "values ('R',1,'COLA','PLU','IN','PRC',8,0,0), ('R',2,'FOOD','CAT','IN','RAT',0,20,0),"
        "('R',3,'BREAD','PLU','NOT','',0,0,0), ('R',4,'BEER','PLU','IN','2',1,0,0)",
    ),
    "PTPL": (rule(kind="PTPL"), DIRECT + "values ('R',1,'COLA','PLU','IN','PRC',8,0,6)"),
    "PTOS": (rule(kind="PTOS"), DIRECT + "values ('R',1,'COLA','PLU','IN','PRC',8,0,2)"),
    "ZHZY": (
        rule(kind="ZHZY", mode="ZH"),
        SET
        + "values ('R',1,3,'DP',21);"
        + SET_GOODS
        + "values ('R',1,'','COLA','PLU',0,'',0,0), ('R',2,'','FOOD','CAT',0,'',0,0)",
    ),
    "ZHGD": (
        rule(kind="ZHGD", mode="ZH"),
        SET
        + "values ('R',1,0,'TC',12);"
        + SET_GOODS
        + "values ('R',1,'','COLA','PLU',1,'',0,0), ('R',2,'','BREAD','PLU',1,'',0,0)",
    ),
    "ZHZX": (
        rule(kind="ZHZX", mode="ZH"),
        SLOT
        + "values ('R',1,'DRINK',1), ('R',2,'FOOD',0);"
        + SET_GOODS
        + "values ('R',1,'DRINK','COLA','PLU',1,'',8,0), ('R',2,'FOOD','BREAD','PLU',1,'',2,0)",
    ),
    "ZHTJ": (
        rule(kind="ZHTJ", mode="ZH"),
        "insert into tProCombConditionAct (BillNo,SerialNo,PluCode,PluType,SaleCount) values ('R',1,'BEER','PLU',2);"
        + SET_GOODS
        + "values ('R',1,'','COLA','PLU',0,'RAT',0,20)",
    ),
    "MZMJ": (
        rule(kind="MZMJ", mode="MZ", primary="DJ"),
        LIST
        + "values ('R','1','ALL'), ('R','2','DES');"
        + LIST_TIER
        + "values ('R','1',50,5,10,1,0), ('R','1',100,12,10,1,0), ('R','2',20,2,10,1,0);"
        + LISTED_GOODS
        + "values ('R','2',1,'1','COLA','PLU','IN')",
    ),
    "MZDP": (rule(kind="MZDP", mode="MZ"), GOODS_TIER + "values ('R',1,'1','COLA','PLU','NUM',3,'NUM',1)"),
    "MZZM": (
        rule(kind="MZZM", mode="MZ"),
        GIFT + "values ('R',1,'BREAD','SUM',20,'NUM',1,1,0);" + LISTED_GOODS + "values ('R','1',1,'1','DRINK','CAT','IN')",
    ),
    "MZZP": (rule(kind="MZZP", mode="MZ", primary="DJ"), GIFT + "values ('R',1,'BREAD','SUM',60,'NUM',1,1,0)"),
    "MZHG": (rule(kind="MZHG", mode="MZ", primary="DJ"), GIFT + "values ('R',1,'BREAD','SUM',60,'NUM',1,1,2)"),
    "MZZQ": (rule(kind="MZZQ", mode="MZ", primary="DJ", groups=LISTED), ""),
    "MZYQ": (rule(kind="MZYQ", mode="MZ", primary="DJ", groups=LISTED), ""),
    "MZZF": (rule(kind="MZZF", mode="MZ", primary="DJ", groups=PAID), ""),
}


class Folder:
    """A store made of texts; rows go past the checks of its tables, as they do in a store with tables of its own."""

    def __init__(self, rules, sql, goods=GOODS, settings=SETTINGS):
        self.path = pathlib.Path(tempfile.mkdtemp())
        (self.path / "rules").mkdir()
        for name, text in rules.items():
            (self.path / "rules" / name).write_text(text, "utf-8")
        (self.path / "config.ini").write_text(settings, "utf-8")
        if goods is not None:
            (self.path / "goods.xml").write_text(goods, "utf-8")
        database = sqlite3.connect(self.path / "store.db")
        database.executescript("pragma ignore_check_constraints=on; pragma synchronous=off;" + SCHEMA + sql)
        database.close()

    def __enter__(self):
        return self.path

    def __exit__(self, *_):
        shutil.rmtree(self.path, ignore_errors=True)


@dataclasses.dataclass
class Case:
    """A small change to a clean store, and the finding that it makes."""

    code: str
    kind: str  # the type whose clean store is changed
    at: str
    xml: tuple = ()  # (old, new) in the rule
    sql: str = ""  # behind the clean rows
    goods: tuple = ()  # (old, new) in the goods list
    more: dict = dataclasses.field(default_factory=dict)  # further rules, by file
    also: tuple = ()  # what follows from it beside
    settings: str = SETTINGS
    groups: str = ""  # within the rule's list
    gives: bool = False  # whether something is given all the same, by other rows or lists

    def store(self):
        text, rows = CLEAN[self.kind]
        goods = GOODS
        for old, new in [self.xml] if self.xml else []:
            assert old in text, (old, text)
            text = text.replace(old, new, 1)
        text = text.replace("      <PluAddAction>", self.groups + "      <PluAddAction>", 1)
        for old, new in [self.goods] if self.goods else []:
            assert old in goods
            goods = goods.replace(old, new)
        return Folder({"R.xml": text, **self.more}, rows + ";" + self.sql, goods, self.settings)


R = "rules/R.xml"
ROW = "tProPrjDirectProAct BillNo=R SerialNo=1"


def direct(change, serial=1):
    return f"update tProPrjDirectProAct set {change} where SerialNo={serial}"


TIMES = 'StartTime="" EndTime="" Frequency="DAY"\n           WeekDays=""'
HOURS = f'<Row StartDate="2024-01-01" EndDate="2099-12-31" {TIMES} MonthDays=""/>'
SHOPS = '<Row OrgCode="*"/>'
OFF_ROWS = LIST + "values ('A','1','ALL');" + LIST_TIER + "values ('A','1',50,5,10,1,0);"
PT_OFF = rule("A", "MZMJ", "MZ", "PT", "2024-07-01")

CASES = [
    # The store.
    Case("store", "PTXS", "config.ini:0", settings=SETTINGS.replace("SQLITE", "SQLLITE")),
    Case("store-doubt", "PTXS", "config.ini:0", settings=SETTINGS + "DbNam=x\n"),
    Case("missing-table", "PTXS", "tProPrjCombCtrl", sql="drop table tProPrjCombCtrl"),
    Case(
        "missing-column",
        "PTXS",
        "tProPrjCombCtrl",
        sql="alter table tProPrjCombCtrl drop column CountTotal"
        if sqlite3.sqlite_version_info >= (3, 50)
        else "alter table tProPrjCombCtrl rename column CountTotal to Count",
    ),
    Case(
        "missing-index",
        "PTXS",
        "tProPrjDirectProAct",
        sql="create table t as select * from tProPrjDirectProAct; drop table tProPrjDirectProAct;"
        "alter table t rename to tProPrjDirectProAct; create index i on tProPrjDirectProAct (PluCode, BillNo)",
    ),
    Case("bad-goods-list", "PTXS", "goods.xml:2", goods=('"10.00" CAT="DRINK" BRD="SUN"', '"10,00" CAT="DRINK" BRD="SUN"')),
    Case("bad-xml", "PTXS", f"{R}:2", xml=('Primary="PT"', 'Primary="PT')),
    Case("unreadable-rule", "PTXS", "rules/folder.xml:0"),
    Case("refused-rule", "PTXS", f"{R}:12", xml=("  </Rule>\n", '  </Rule>\n  <Rule BillNo="S" ProType="PTXS"/>\n')),
    # The form of values.
    Case("decimal-comma", "PTXS", ROW, sql=direct("DscPrice='7,99'"), also=("free-price",)),
    Case("decimal-comma", "MZZQ", f"{R}:11", xml=('MaxDiscount="20"', 'MaxDiscount="20,5"')),
    Case("decimal-comma", "PTXS", f"{R}:3", xml=('MaxYhType="0" MaxYhValue="0"', 'MaxYhType="1" MaxYhValue="10,50"')),
    Case("not-a-number", "PTXS", ROW, sql=direct("DscPrice='eight'"), also=("free-price",)),
    Case("not-a-number", "MZZF", f"{R}:18", xml=('DisRate="28"', 'DisRate="28 EUR"')),
    Case("negative-number", "PTXS", ROW, sql=direct("DscPrice=-8")),
    Case("padded-text", "PTXS", ROW, sql=direct("PluCode='COLA '"), also=("unknown-goods",)),
    Case("padded-text", "PTXS", ROW, sql=direct("DscType=' PRC'")),
    Case("padded-text", "PTXS", f"{R}:2", xml=('Primary="PT"', 'Primary="PT "'), gives=True),
    Case("padded-text", "PTXS", f"{R}:5", xml=(SHOPS, '<Row OrgCode=" 01"/>')),
    Case(
        "padded-text",
        "PTXS",
        "tProPrjDirectProAct BillNo=R",
        sql="update tProPrjDirectProAct set BillNo='R '",
        also=("no-rows",),
    ),
    # The header.
    Case("no-number", "PTXS", f"{R}:2", xml=('BillNo="R" ', ""), also=("rows-without-rule",)),
    Case("duplicate-number", "PTXS", "rules/S.xml:2", more={"S.xml": CLEAN["PTXS"][0]}),
    Case("unknown-type", "PTXS", f"{R}:2", xml=('ProType="PTXS"', 'ProType="PTSX"')),
    Case("unknown-type", "PTXS", f"{R}:2", xml=('ProType="PTXS" ', "")),
    Case("unknown-class", "PTXS", f"{R}:2", xml=('Primary="PT"', 'Primary="pt"')),
    Case("unknown-class", "PTXS", f"{R}:2", xml=('Primary="PT" ', "")),
    Case("wrong-family", "PTXS", f"{R}:2", xml=('ProMode="PT"', 'ProMode="ZH"')),
    Case("unknown-limit", "PTXS", f"{R}:3", xml=('MaxYhType="0"', 'MaxYhType="3"')),
    Case("idle-limit", "PTXS", f"{R}:3", xml=('MaxYhValue="0"', 'MaxYhValue="5"')),
    Case("idle-limit", "MZZP", f"{R}:3", xml=('MaxYhType="0" MaxYhValue="0"', 'MaxYhType="1" MaxYhValue="5"')),
    Case("zero-limit", "PTXS", f"{R}:3", xml=('MaxYhType="0"', 'MaxYhType="1"')),
    Case("zero-limit", "PTXS", f"{R}:3", xml=('MaxYhType="0" MaxYhValue="0"', 'MaxYhType="2" MaxYhValue="-1"')),
    Case("zero-limit", "ZHGD", f"{R}:3", xml=('MaxYhType="0" MaxYhValue="0"', 'MaxYhType="2" MaxYhValue="0.5"')),
    Case("zero-limit", "MZZF", f"{R}:12", xml=('PriceTotal="6"', 'PriceTotal="0"')),
    Case("no-order-date", "PTXS", f"{R}:2", xml=('JzDate="2024-06-01"', 'JzDate=""')),
    Case("misspelt-mark", "PTXS", f"{R}:3", xml=('Remark=""', 'Remark="DVCKZ"')),
    Case("misspelt-name", "PTXS", f"{R}:7", xml=("    <ProTime>", '    <Vips><Row VipType="01"/></Vips><ProTime>')),
    Case("misspelt-name", "PTXS", f"{R}:3", xml=('MaxYhType="0" MaxYhValue="0"', 'MaxYhTyp="1" MaxYhValue="0"')),
    Case("misspelt-name", "PTXS", f"{R}:7", xml=("    <ProTime>", '    <Vip><Row viptype="01"/></Vip><ProTime>')),
    Case(
        "misspelt-name",
        "MZZQ",
        f"{R}:15",
        xml=('EndDate="2099-12-31" LimitType="0"', 'EndDat="2099-12-31" LimitType="0"'),
        also=("coupon-without-end",),
    ),
    # Filters.
    Case("no-shop", "PTXS", f"{R}:2", xml=(SHOPS, "")),
    Case("all-shops", "PTXS", f"{R}:5", xml=(SHOPS, SHOPS + '<Row OrgCode="01"/>')),
    Case(
        "all-members", "PTXS", f"{R}:7", xml=("    <ProTime>", '    <Vip><Row VipType="*"/><Row VipType="01"/></Vip><ProTime>')
    ),
    Case(
        "all-members", "PTXS", f"{R}:7", xml=("    <ProTime>", '    <Vip><Row VipType="01"/><Row VipType="*"/></Vip><ProTime>')
    ),
    Case(
        "all-payments",
        "PTXS",
        f"{R}:7",
        xml=("    <ProTime>", '    <PayMode><Row PayMode="*"/><Row PayMode="CARD"/></PayMode><ProTime>'),
    ),
    # Days and hours.
    Case("no-time", "PTXS", f"{R}:2", xml=(HOURS, "")),
    Case("bad-date", "PTXS", f"{R}:8", xml=("2099-12-31", "31.12.2099")),
    Case("bad-date", "PTXS", f"{R}:2", xml=("2024-06-01", "2024-6-1")),
    Case("bad-time", "PTXS", f"{R}:8", xml=('StartTime="" EndTime=""', 'StartTime="8:00" EndTime="12:00:00"')),
    Case("bad-time", "PTXS", f"{R}:8", xml=('StartTime="" EndTime=""', 'StartTime="18:00:00" EndTime="24:00:00"')),
    Case("missing-date", "PTXS", f"{R}:8", xml=('StartDate="2024-01-01" ', "")),
    Case("missing-date", "PTXS", f"{R}:8", xml=('EndDate="2099-12-31"', 'EndDate=""')),
    Case("end-before-start", "PTXS", f"{R}:8", xml=("2099-12-31", "2023-12-31")),
    Case(
        "end-before-start",
        "MZZQ",
        f"{R}:15",
        xml=('EndDate="2099-12-31" LimitType', 'EndDate="2023-12-31" LimitType'),
        gives=True,
    ),
    Case("missing-end-time", "PTXS", f"{R}:8", xml=('StartTime=""', 'StartTime="08:00:00"')),
    Case("idle-end-time", "PTXS", f"{R}:8", xml=('EndTime=""', 'EndTime="12:00:00"')),
    Case("over-midnight", "PTXS", f"{R}:8", xml=('StartTime="" EndTime=""', 'StartTime="22:00:00" EndTime="02:00:00"')),
    Case("missing-frequency", "PTXS", f"{R}:8", xml=(' Frequency="DAY"', "")),
    Case("unknown-frequency", "PTXS", f"{R}:8", xml=(TIMES, TIMES.replace("DAY", "WEEKS").replace('Days=""', 'Days="1"'))),
    Case("no-weekdays", "PTXS", f"{R}:8", xml=('"DAY"', '"WEEK"')),
    Case("bad-weekday", "PTXS", f"{R}:9", xml=(TIMES, TIMES.replace("DAY", "WEEK").replace('Days=""', 'Days="6,7"'))),
    Case("bad-weekday", "PTXS", f"{R}:9", xml=(TIMES, TIMES.replace("DAY", "WEEK").replace('Days=""', 'Days="Mon"'))),
    Case("bad-weekday", "PTXS", f"{R}:9", xml=(TIMES, TIMES.replace("DAY", "WEEK").replace('Days=""', 'Days="1,"'))),
    Case("idle-days", "PTXS", f"{R}:9", xml=('WeekDays=""', 'WeekDays="0,6"')),
    Case("idle-days", "PTXS", f"{R}:9", xml=('MonthDays=""', 'MonthDays="1"')),
    # Tables.
    Case("no-rows", "PTXS", f"{R}:2", sql="delete from tProPrjDirectProAct"),
    Case("no-rows", "MZMJ", f"{R}:2", sql="delete from tpromzlist"),
    Case("no-rows", "MZZQ", f"{R}:2", xml=(LISTED, "")),
    Case("no-rows", "MZZF", f"{R}:2", xml=('<Row SerialNo="1" DisPrice="30" DisRate="28"/>', "")),
    Case(
        "wrong-table",
        "PTXS",
        "tProPrjDirectProAct BillNo=R",
        xml=('"PTXS" ProMode="PT"', '"MZDP" ProMode="MZ"'),
        also=("no-rows",),
    ),
    Case("idle-rows", "PTXS", "tProMzPluAct BillNo=R", sql=CLEAN["MZDP"][1]),
    Case("idle-rows", "ZHGD", "tProPrjCombProAct BillNo=R SerialNo=2", sql=SET + "values ('R',2,0,'DP',0)"),
    Case(
        "idle-rows",
        "MZMJ",
        "tProMzConPluSet BillNo=R ListCode=1 SerialNo=1 DataId=1",
        sql=LISTED_GOODS + "values ('R','1',1,'1','COLA','PLU','IN')",
    ),
    Case("rows-without-rule", "PTXS", "tProMzPluAct BillNo=GONE", sql=CLEAN["MZDP"][1].replace("'R'", "'GONE'")),
    Case(
        "same-key",
        "PTXS",
        ROW,
        sql="create table t as select * from tProPrjDirectProAct; drop table tProPrjDirectProAct;"
        "alter table t rename to tProPrjDirectProAct; create index i on tProPrjDirectProAct (BillNo);"
        + DIRECT
        + "values ('R',1,'BEER','PLU','IN','PRC',8,0,0)",
    ),
    # Goods.
    Case("no-goods-code", "PTXS", ROW, sql=direct("PluCode=''")),
    Case("unknown-goods-kind", "PTXS", ROW, sql=direct("PluType='PUL'")),
    Case("unknown-goods-kind", "PTXS", ROW, sql=direct("PluType=null")),
    Case(
        "unknown-goods-kind",
        "ZHTJ",
        "tProCombConditionAct BillNo=R SerialNo=1",
        sql="update tProCombConditionAct set PluType='plu'",
    ),
    Case("unknown-range", "PTXS", ROW, sql=direct("InRange='in'")),
    Case(
        "unknown-range",
        "MZYQ",
        f"{R}:12",
        xml=('<ProList ConAreaType="ALL"', '<ProList ConAreaType="DES"'),
        groups='      <PluCondition><Row PluCode="COLA" Contain="OUT"/></PluCondition>\n',
    ),
    Case(
        "only-not-rows",
        "MZZQ",
        f"{R}:12",
        xml=('<ProList ConAreaType="ALL"', '<ProList ConAreaType="DES"'),
        groups='      <PluCondition><Row PluCode="COLA" Contain="NOT"/></PluCondition>\n',
    ),
    Case("unknown-goods", "MZZQ", f"{R}:12", groups='      <PluCondition><Row PluCode="COLE" Contain="IN"/></PluCondition>\n'),
    Case(
        "unknown-range",
        "MZZM",
        "tProMzConPluSet BillNo=R ListCode=1 SerialNo=1 DataId=1",
        sql="update tProMzConPluSet set InRange='OUT'",
    ),
    Case("only-not-rows", "PTPL", ROW, sql=direct("InRange='NOT'")),
    Case(
        "only-not-rows",
        "MZZM",
        "tProMzConPluSet BillNo=R ListCode=1 SerialNo=1 DataId=1",
        sql="update tProMzConPluSet set InRange='NOT'",
    ),
    Case("articles-only", "PTOS", ROW, sql=direct("PluType='CAT', PluCode='DRINK'")),
    Case(
        "articles-only",
        "ZHZX",
        "tProPrjCombPluSet BillNo=R SerialNo=1",
        sql="update tProPrjCombPluSet set PluType='CAT' where SerialNo=1",
        gives=True,
    ),
    Case(
        "articles-only",
        "ZHGD",
        "tProPrjCombPluSet BillNo=R SerialNo=1",
        sql="update tProPrjCombPluSet set PluType='BRD' where SerialNo=1",
        gives=True,
    ),
    Case("not-counts-as-in", "PTOS", ROW, sql=direct("InRange='NOT'")),
    Case(
        "brand-in-free-set",
        "ZHZY",
        "tProPrjCombPluSet BillNo=R SerialNo=2",
        sql="update tProPrjCombPluSet set PluType='BRD', PluCode='SUN' where SerialNo=2",
        gives=True,
    ),
    Case("unknown-goods", "PTXS", ROW, sql=direct("PluCode='COLE'")),
    Case("unknown-goods", "PTXS", "tProPrjDirectProAct BillNo=R SerialNo=2", sql=direct("PluCode='FRUIT'", 2)),
    Case("unknown-goods", "PTXS", "tProPrjDirectProAct BillNo=R SerialNo=2", sql=direct("PluType='BRD', PluCode='MARS'", 2)),
    Case("unknown-goods", "MZZP", "tProMzScheme BillNo=R SerialNo=1", sql="update tProMzScheme set PluCode='BAG'"),
    # Prices.
    Case("unknown-price-kind", "PTXS", ROW, sql=direct("DscType='PCR'")),
    Case("unknown-price-kind", "ZHTJ", "tProPrjCombPluSet BillNo=R SerialNo=1", sql="update tProPrjCombPluSet set DscType=''"),
    Case("no-reduction-in-sets", "PTOS", ROW, sql=direct("DscType='2'")),
    Case(
        "unknown-set-price", "ZHZY", "tProPrjCombProAct BillNo=R SerialNo=1", sql="update tProPrjCombProAct set PriceType='PD'"
    ),
    Case(
        "unknown-set-price", "ZHGD", "tProPrjCombProAct BillNo=R SerialNo=1", sql="update tProPrjCombProAct set PriceType='2'"
    ),
    Case("price-not-lower", "PTXS", ROW, sql=direct("DscPrice=10")),
    Case(
        "price-not-lower",
        "PTXS",
        "tProPrjDirectProAct BillNo=R SerialNo=2",
        sql=direct("DscType='PRC', DscPrice=3", 2),
        gives=True,
    ),
    Case("price-not-lower", "ZHZY", "tProPrjCombProAct BillNo=R SerialNo=1", sql="update tProPrjCombProAct set PriceTotal=30"),
    Case("price-not-lower", "ZHGD", "tProPrjCombProAct BillNo=R SerialNo=1", sql="update tProPrjCombProAct set PriceTotal=13"),
    Case(
        "price-not-lower",
        "ZHZX",
        "tProPrjCombPluSet BillNo=R SerialNo=1",
        sql="update tProPrjCombPluSet set DscPrice=10.5 where SerialNo=1",
        gives=True,
    ),
    Case("price-not-lower", "MZHG", "tProMzScheme BillNo=R SerialNo=1", sql="update tProMzScheme set DscPrice=3", gives=True),
    Case(
        "reduction-above-price", "PTXS", "tProPrjDirectProAct BillNo=R SerialNo=4", sql=direct("DscPrice=10.5", 4), gives=True
    ),
    Case(
        "reduction-above-price",
        "ZHZY",
        "tProPrjCombProAct BillNo=R SerialNo=1",
        sql="update tProPrjCombProAct set PriceType='2', PriceTotal=31",
        gives=True,
    ),
    Case("rate-out-of-range", "PTXS", "tProPrjDirectProAct BillNo=R SerialNo=2", sql=direct("DscRate=120", 2)),
    Case(
        "rate-out-of-range",
        "ZHZY",
        "tProPrjCombProAct BillNo=R SerialNo=1",
        sql="update tProPrjCombProAct set PriceType='TC', PriceTotal=101",
    ),
    Case("no-gain", "PTXS", "tProPrjDirectProAct BillNo=R SerialNo=2", sql=direct("DscRate=0", 2), gives=True),
    Case("no-gain", "PTXS", "tProPrjDirectProAct BillNo=R SerialNo=4", sql=direct("DscPrice=0", 4), gives=True),
    Case(
        "no-gain", "MZDP", "tProMzPluAct BillNo=R SerialNo=1 DataId=1 PluCode=COLA", sql="update tProMzPluAct set BaseDscNum=0"
    ),
    Case("no-gain", "MZZF", f"{R}:18", xml=('DisRate="28"', 'DisRate="30"')),
    Case("free-price", "PTXS", ROW, sql=direct("DscPrice=null")),
    Case("free-price", "ZHGD", "tProPrjCombProAct BillNo=R SerialNo=1", sql="update tProPrjCombProAct set PriceTotal=0"),
    Case("gift-price", "MZZP", "tProMzScheme BillNo=R SerialNo=1", sql="update tProMzScheme set DscPrice=2"),
    Case("gift-price", "MZHG", "tProMzScheme BillNo=R SerialNo=1", sql="update tProMzScheme set DscPrice=0"),
    # Pieces and sets.
    Case("sale-count", "PTOS", ROW, sql=direct("SaleCount=0")),
    Case("sale-count", "ZHZY", "tProPrjCombProAct BillNo=R SerialNo=1", sql="update tProPrjCombProAct set SaleCount=0.5"),
    Case(
        "sale-count",
        "ZHGD",
        "tProPrjCombPluSet BillNo=R SerialNo=1",
        sql="update tProPrjCombPluSet set SaleCount=0 where SerialNo=1",
        also=("price-not-lower",),
        gives=True,
    ),
    Case(
        "sale-count",
        "ZHZX",
        "tProPrjCombPluSet BillNo=R SerialNo=1",
        sql="update tProPrjCombPluSet set SaleCount=0 where SerialNo=1",
    ),
    Case("no-minimum", "PTPL", ROW, sql=direct("SaleCount=0")),
    Case("fewer-than-minimum", "PTPL", ROW, sql=direct("TradeMaxCount=4")),
    Case("minimum-above-limit", "PTPL", ROW, xml=('MaxYhType="0" MaxYhValue="0"', 'MaxYhType="2" MaxYhValue="5"')),
    Case(
        "set-above-limit",
        "ZHZY",
        "tProPrjCombProAct BillNo=R SerialNo=1",
        xml=('MaxYhType="0" MaxYhValue="0"', 'MaxYhType="2" MaxYhValue="2"'),
    ),
    Case(
        "row-without-slot",
        "ZHZX",
        "tProPrjCombPluSet BillNo=R SerialNo=2",
        sql="update tProPrjCombPluSet set ProActCode='FOD' where SerialNo=2",
    ),
    Case("empty-slot", "ZHZX", "tProPrjCombProAct BillNo=R SerialNo=3", sql=SLOT + "values ('R',3,'SWEET',1)"),
    Case("no-condition", "ZHTJ", f"{R}:2", sql="delete from tProCombConditionAct"),
    Case(
        "mixed-classes",
        "ZHTJ",
        "tProPrjCombPluSet BillNo=R SerialNo=3",
        sql=SET_GOODS + "values ('R',2,'','DRINK','CAT',0,'RAT',0,10), ('R',3,'','FOOD','CAT',0,'RAT',0,20)",
    ),
    # Lists and tiers.
    Case(
        "unknown-area",
        "MZMJ",
        "tpromzlist BillNo=R ListCode=1",
        sql="update tpromzlist set ConAreaType='AL' where ListCode='1'",
        gives=True,
    ),
    Case("unknown-area", "MZZQ", f"{R}:11", xml=('ConAreaType="ALL"', 'ConAreaType="ALLE"')),
    Case("area-without-goods", "MZMJ", "tpromzlist BillNo=R ListCode=2", sql="delete from tProMzConPluSet", gives=True),
    Case("area-without-goods", "MZYQ", f"{R}:11", xml=('ConAreaType="ALL"', 'ConAreaType="DES"')),
    Case(
        "row-without-list",
        "MZMJ",
        "tProMzDiscountAct BillNo=R ListCode=3 BaseMoney=10",
        sql=LIST_TIER + "values ('R','3',10,1,10,1,0)",
    ),
    Case("list-without-tier", "MZMJ", "tpromzlist BillNo=R ListCode=3", sql=LIST + "values ('R','3','ALL')", gives=True),
    Case(
        "list-without-tier",
        "MZZQ",
        f"{R}:11",
        xml=('<Row SerialNo="1" BaseConNum="20" BaseDscNum="5" AddConNum="20" AddDscNum="5" SaleMaxIn="0"/>', ""),
    ),
    Case(
        "unknown-unit",
        "MZDP",
        "tProMzPluAct BillNo=R SerialNo=1 DataId=1 PluCode=COLA",
        sql="update tProMzPluAct set BaseConType='PCS'",
    ),
    Case("unknown-unit", "MZZM", "tProMzScheme BillNo=R SerialNo=1", sql="update tProMzScheme set BaseDscType='NUMB'"),
    Case("money-alone", "MZZQ", f"{R}:13", xml=('BaseConNum="20"', 'BaseConTp="NUM" BaseConNum="20"')),
    Case("no-threshold", "MZZP", "tProMzScheme BillNo=R SerialNo=1", sql="update tProMzScheme set BaseConNum=0"),
    Case(
        "no-threshold",
        "MZMJ",
        "tProMzDiscountAct BillNo=R ListCode=2 BaseMoney=0",
        sql="update tProMzDiscountAct set BaseMoney=0 where ListCode='2'",
    ),
    Case(
        "equal-thresholds",
        "MZDP",
        "tProMzPluAct BillNo=R SerialNo=2 DataId=1 PluCode=COLA",
        sql=GOODS_TIER + "values ('R',2,'1','COLA','PLU','NUM',3,'NUM',2)",
    ),
    Case("equal-thresholds", "ZHZY", "tProPrjCombProAct BillNo=R SerialNo=2", sql=SET + "values ('R',2,3,'DP',20)"),
    Case(
        "equal-thresholds",
        "MZZQ",
        f"{R}:14",
        xml=(
            "      </PluAddAction>",
            '        <Row SerialNo="2" BaseConNum="20" BaseDscNum="6" AddConNum="20" AddDscNum="5" SaleMaxIn="0"/>\n      </PluAddAction>',
        ),
    ),
    Case(
        "repeats",
        "MZMJ",
        "tProMzDiscountAct BillNo=R ListCode=1 BaseMoney=100",
        sql="update tProMzDiscountAct set AddMoney=0 where BaseMoney=100",
    ),
    Case(
        "repeats",
        "MZYQ",
        f"{R}:13",
        xml=(
            'MaxDiscount="20" DscIntoPlu="0">\n      <PluAddAction>\n        <Row SerialNo="1" BaseConNum="20" BaseDscNum="5" AddConNum="20"',
            'MaxDiscount="0" DscIntoPlu="0">\n      <PluAddAction>\n        <Row SerialNo="1" BaseConNum="20" BaseDscNum="5" AddConNum="0"',
        ),
    ),
    Case(
        "max-below-threshold",
        "MZMJ",
        "tProMzDiscountAct BillNo=R ListCode=2 BaseMoney=20",
        sql="update tProMzDiscountAct set SaleMaxIn=10 where ListCode='2'",
    ),
    Case(
        "tier-above-limit",
        "MZMJ",
        "tProMzDiscountAct BillNo=R ListCode=1 BaseMoney=100",
        sql="update tpromzlist set MaxDiscount=11 where ListCode='1'",
    ),
    Case("tier-above-limit", "MZZM", "tProMzScheme BillNo=R SerialNo=1", sql="update tProMzScheme set BaseDscNum=2"),
    Case(
        "falling-tier",
        "MZMJ",
        "tProMzDiscountAct BillNo=R ListCode=1 BaseMoney=100",
        sql="update tProMzDiscountAct set BaseDscMoney=8 where BaseMoney=100",
    ),
    Case(
        "tier-without-gain",
        "MZMJ",
        "tProMzDiscountAct BillNo=R ListCode=1 BaseMoney=100",
        sql="update tProMzDiscountAct set BaseDscMoney=9 where BaseMoney=100",
    ),
    # Coupons and payments.
    Case("idle-denominations", "MZZQ", f"{R}:17", xml=(' IsDenom="1"', "")),
    Case("flag-by-presence", "MZZQ", f"{R}:15", xml=('IsDenom="1"', 'IsDenom="0"')),
    Case("uncut-coupon", "MZZQ", f"{R}:13", xml=('Denomination="5"', 'Denomination="10"')),
    Case("coupon-without-end", "MZZQ", f"{R}:15", xml=('EndDate="2099-12-31" LimitType="0"', 'LimitType="0"')),
    Case("coupon-without-end", "MZZQ", f"{R}:15", xml=('LimitType="0"', 'LimitType="1"')),
    Case("takes-coupons", "MZZQ", f"{R}:3", xml=('Remark=""', 'Remark="DVCZK"')),
    Case("takes-coupons", "MZZQ", f"{R}:7", xml=("    <ProTime>", '    <PayMode><Row PayMode="CARD"/></PayMode><ProTime>')),
    Case("no-pay-type", "MZZF", f"{R}:12", xml=(' PayType="CARD"', "")),
    Case("empty-card-range", "MZZF", f"{R}:15", xml=("6299", "6199")),
    # What rules do to each other.
    Case(
        "same-date",
        "PTXS",
        "rules/S.xml:2",
        more={"S.xml": rule("S")},
        sql=DIRECT + "values ('S',1,'COLA','PLU','IN','PRC',7,0,0)",
    ),
    Case(
        "same-date",
        "PTXS",
        "rules/S.xml:2",
        more={"S.xml": rule("S", "PTPL")},
        sql=DIRECT + "values ('S',1,'DRINK','CAT','IN','PRC',7,0,6)",
    ),
    Case("same-date", "MZZF", "rules/S.xml:2", more={"S.xml": CLEAN["MZZF"][0].replace('BillNo="R"', 'BillNo="S"')}),
    Case("starved-gift", "MZZP", f"{R}:2", xml=('Primary="DJ"', 'Primary="PT"'), more={"A.xml": PT_OFF}, sql=OFF_ROWS),
    Case("starved-gift", "MZHG", f"{R}:2", more={"A.xml": PT_OFF.replace('Primary="PT"', 'Primary="DZ"')}, sql=OFF_ROWS),
    Case("starved-gift", "MZDP", f"{R}:2", more={"A.xml": PT_OFF}, sql=OFF_ROWS),
    Case("barred-by-coupons", "MZDP", f"{R}:2", more={"A.xml": rule("A", "MZZQ", "MZ", "PT", "2024-07-01", LISTED)}),
    Case("barred-by-coupons", "MZYQ", f"{R}:2", more={"A.xml": rule("A", "MZZQ", "MZ", "DZ", "2024-05-01", LISTED)}),
    Case("limited-twice", "PTXS", ROW, xml=('Primary="PT"', 'Primary="DZ"'), sql=direct("TradeMaxCount=2")),
    Case("limited-twice", "PTPL", ROW, xml=('Primary="PT"', 'Primary="DZ"'), sql=direct("TradeMaxCount=6")),
    Case(
        "limited-twice",
        "ZHGD",
        f"{R}:3",
        xml=(
            'Primary="PT" JzDate="2024-06-01"\n        MaxYhType="0" MaxYhValue="0"',
            'Primary="DZ" JzDate="2024-06-01"\n        MaxYhType="2" MaxYhValue="1"',
        ),
    ),
]

# What looks like a mistake and is none.
FINE = {
    "a gift of class DJ behind a PT reduction": Case("", "MZZP", "", more={"A.xml": PT_OFF}, sql=OFF_ROWS),
    "a gift with a later date than a PT reduction": Case(
        "",
        "MZZP",
        "",
        xml=('Primary="DJ" JzDate="2024-06-01"', 'Primary="PT" JzDate="2024-08-01"'),
        more={"A.xml": PT_OFF},
        sql=OFF_ROWS,
    ),
    "a reduction of other goods before a gift": Case(
        "",
        "MZDP",
        "",
        more={"A.xml": PT_OFF},
        sql=LIST
        + "values ('A','1','DES');"
        + LIST_TIER
        + "values ('A','1',50,5,10,1,0);"
        + LISTED_GOODS
        + "values ('A','1',1,'1','BREAD','PLU','IN')",
    ),
    "one date, other goods": Case(
        "", "PTPL", "", more={"S.xml": rule("S")}, sql=DIRECT + "values ('S',1,'BREAD','PLU','IN','PRC',2,0,0)"
    ),
    "one date, other class": Case(
        "", "PTXS", "", more={"S.xml": rule("S", primary="DJ")}, sql=DIRECT + "values ('S',1,'COLA','PLU','IN','PRC',7,0,0)"
    ),
    "one date, other family": Case(
        "", "PTXS", "", more={"S.xml": rule("S", "ZHZY", "ZH")}, sql=CLEAN["ZHZY"][1].replace("'R'", "'S'")
    ),
    "one date, other shops": Case(
        "",
        "PTXS",
        "",
        xml=(SHOPS, '<Row OrgCode="01"/>'),
        more={"S.xml": rule("S").replace(SHOPS, '<Row OrgCode="02"/>')},
        sql=DIRECT + "values ('S',1,'COLA','PLU','IN','PRC',7,0,0)",
    ),
    "one date, other days": Case(
        "",
        "PTXS",
        "",
        xml=("2099-12-31", "2024-12-31"),
        more={"S.xml": rule("S").replace("2024-01-01", "2025-01-01")},
        sql=DIRECT + "values ('S',1,'COLA','PLU','IN','PRC',7,0,0)",
    ),
    "one date, other weekdays": Case(
        "",
        "PTXS",
        "",
        xml=(TIMES, TIMES.replace("DAY", "WEEK").replace('Days=""', 'Days="0,6"')),
        more={"S.xml": rule("S").replace(TIMES, TIMES.replace("DAY", "WEEK").replace('Days=""', 'Days="1,2"'))},
        sql=DIRECT + "values ('S',1,'COLA','PLU','IN','PRC',7,0,0)",
    ),
    "one date, two offers": Case(
        "", "MZZP", "", more={"S.xml": rule("S", "MZHG", "MZ", "DJ")}, sql=CLEAN["MZHG"][1].replace("'R'", "'S'")
    ),
    "a DZ rule limited by its header": Case(
        "",
        "PTXS",
        "",
        xml=(
            'Primary="PT" JzDate="2024-06-01"\n        MaxYhType="0" MaxYhValue="0"',
            'Primary="DZ" JzDate="2024-06-01"\n        MaxYhType="2" MaxYhValue="2"',
        ),
        sql=direct("TradeMaxCount=2"),
    ),
    "members of two types": Case(
        "", "PTXS", "", xml=("    <ProTime>", '    <Vip><Row VipType="02"/><Row VipType="01"/></Vip><ProTime>')
    ),
    "a tier that gives once": Case(
        "", "MZMJ", "", sql="update tProMzDiscountAct set AddMoney=0, AddDscMoney=0, SaleMaxIn=100 where BaseMoney=100"
    ),
    "a lower tier without a step": Case(
        "", "MZMJ", "", sql="update tProMzDiscountAct set AddMoney=0, AddDscMoney=0 where BaseMoney=50"
    ),
    "coupons that are taken whatever the time": Case("", "MZYQ", "", xml=(HOURS, "")),
    "a class of the lines in ZHTJ": Case(
        "", "ZHTJ", "", sql="update tProCombConditionAct set PluType='COLOUR', PluCode='RED'"
    ),
    "goods without a price": Case("", "PTXS", "", goods=(' Price="10.00"', ""), sql=direct("DscPrice=99")),
    "a list without categories": Case("", "PTXS", "", goods=(' CAT="FOOD"', ""), sql=direct("PluCode='DRINK'", 2)),
    "two classes with one discount": Case(
        "", "ZHTJ", "", sql=SET_GOODS + "values ('R',2,'','DRINK','CAT',0,'RAT',0,10), ('R',3,'','FOOD','CAT',0,'RAT',0,10)"
    ),
    "attributes of other systems": Case("", "PTXS", "", xml=('Remark=""', 'Remark="" ProName="x" Creator="y" MaxYhTypes="1"')),
    "hours within a day": Case("", "PTXS", "", xml=('StartTime="" EndTime=""', 'StartTime="08:00:00" EndTime="12:00:00"')),
    "a piece count in kilograms": Case("", "PTPL", "", sql=direct("SaleCount=0.5")),
    "numbers kept as texts": Case("", "PTXS", "", sql=direct("DscPrice='7.99'")),
}
