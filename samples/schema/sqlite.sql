-- The tables that the engine reads, for SQLite. docs/tables.md says what each column means.
--
-- The engine asks for rows without an order, and the order in which they come decides what a customer gets where two
-- rows of a rule name the same goods. So each table is stored by its key, which is the one road to its rows: they come
-- in the order of their numbers, in every kind of database. An index on the goods could change that order from one day
-- to the next.
--
-- The checks refuse a word that no promotion knows and an amount below 0: the engine would pass such a row over, or take
-- it for something else, without a word. They ask no more than every promotion that reads the table can live with. A
-- missing value passes.
-- SQLite keeps any text in a column of numbers: "1,99" would come out as 0 and the goods for nothing. A text is above every
-- number, so the upper bound of the checks keeps it out.

-- Ordinary promotions (PTXS, PTPL, PTOS): which goods, and what they get. One row a condition and its action.
CREATE TABLE tProPrjDirectProAct (
  BillNo        TEXT NOT NULL,
  SerialNo      INTEGER NOT NULL,
  PluCode       TEXT NOT NULL,
  PluType       TEXT DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  InRange       TEXT DEFAULT 'IN' CHECK (InRange IN ('IN', 'NOT')),
  DscType       TEXT DEFAULT '' CHECK (DscType IN ('', 'PRC', 'RAT', '2')),
  DscPrice      REAL DEFAULT 0 CHECK (DscPrice BETWEEN 0 AND 99999999999999),
  DscRate       REAL DEFAULT 0 CHECK (DscRate BETWEEN 0 AND 99999999999999),
  SaleCount     REAL DEFAULT 0 CHECK (SaleCount BETWEEN 0 AND 99999999999999),
  TradeMaxCount REAL DEFAULT 0 CHECK (TradeMaxCount BETWEEN 0 AND 99999999999999),
  CHECK (COALESCE(DscType, '') <> '' OR InRange = 'NOT'),
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Combinations: the price tiers of a free combination (ZHZY), the slots of a set menu (ZHZX), the price form of a fixed
-- combination (ZHGD, one row).
CREATE TABLE tProPrjCombProAct (
  BillNo     TEXT NOT NULL,
  SerialNo   INTEGER NOT NULL,
  SaleCount  REAL DEFAULT 0 CHECK (SaleCount BETWEEN 0 AND 99999999999999),
  PriceType  TEXT DEFAULT '' CHECK (PriceType IN ('', 'DP', 'TC', '2')),
  PriceTotal REAL DEFAULT 0 CHECK (PriceTotal BETWEEN 0 AND 99999999999999),
  ProActCode TEXT DEFAULT '',
  ProActname TEXT DEFAULT '',
  IsRequired INTEGER DEFAULT 0 CHECK (IsRequired IN (0, 1)),
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Combinations (ZHZY, ZHZX, ZHTJ, ZHGD): the goods.
CREATE TABLE tProPrjCombPluSet (
  BillNo     TEXT NOT NULL,
  SerialNo   INTEGER NOT NULL,
  ProActCode TEXT DEFAULT '',
  PluCode    TEXT NOT NULL,
  PluType    TEXT DEFAULT 'PLU',
  SaleCount  REAL DEFAULT 0 CHECK (SaleCount BETWEEN 0 AND 99999999999999),
  DscType    TEXT DEFAULT '' CHECK (DscType IN ('', 'PRC', 'RAT', '2')),
  DscPrice   REAL DEFAULT 0 CHECK (DscPrice BETWEEN 0 AND 99999999999999),
  DscRate    REAL DEFAULT 0 CHECK (DscRate BETWEEN 0 AND 99999999999999),
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Combination by condition (ZHTJ): what has to be bought.
CREATE TABLE tProCombConditionAct (
  BillNo     TEXT NOT NULL,
  SerialNo   INTEGER NOT NULL,
  PluCode    TEXT NOT NULL,
  PluType    TEXT DEFAULT 'PLU',
  SaleCount  REAL DEFAULT 0 CHECK (SaleCount BETWEEN 0 AND 99999999999999),
  PriceTotal REAL DEFAULT 0 CHECK (PriceTotal BETWEEN 0 AND 99999999999999),
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Combination by condition (ZHTJ): what all its conditions together have to reach.
CREATE TABLE tProPrjCombCtrl (
  BillNo     TEXT NOT NULL,
  SerialNo   INTEGER NOT NULL,
  PriceTotal REAL DEFAULT 0 CHECK (PriceTotal BETWEEN 0 AND 99999999999999),
  CountTotal REAL DEFAULT 0 CHECK (CountTotal BETWEEN 0 AND 99999999999999),
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Full-amount reduction (MZMJ): the offers of a rule.
CREATE TABLE tpromzlist (
  BillNo      TEXT NOT NULL,
  ListCode    TEXT NOT NULL,
  ConAreaType TEXT DEFAULT 'ALL' CHECK (ConAreaType IN ('ALL', 'DES')),
  RstAreaType TEXT DEFAULT 'ALL',
  MaxDiscount REAL DEFAULT 0 CHECK (MaxDiscount BETWEEN 0 AND 99999999999999),
  DscIntoPlu  TEXT DEFAULT '0' CHECK (DscIntoPlu IN ('', '0', '1')),
  PRIMARY KEY (BillNo, ListCode)
) WITHOUT ROWID;

-- Full-amount promotions (MZMJ, MZZP, MZHG, MZZM): the goods that count towards the threshold.
CREATE TABLE tProMzConPluSet (
  BillNo   TEXT NOT NULL,
  ListCode TEXT DEFAULT '0' NOT NULL,
  SerialNo INTEGER NOT NULL,
  DataId   TEXT DEFAULT '0' NOT NULL,
  PluCode  TEXT NOT NULL,
  PluType  TEXT DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  InRange  TEXT DEFAULT 'IN' CHECK (InRange IN ('IN', 'NOT')),
  PRIMARY KEY (BillNo, ListCode, SerialNo, DataId)
) WITHOUT ROWID;

-- Full-amount reduction (MZMJ): the tiers of an offer.
CREATE TABLE tProMzDiscountAct (
  BillNo       TEXT NOT NULL,
  ListCode     TEXT NOT NULL,
  DscType      TEXT DEFAULT 'PRC',
  BaseMoney    REAL DEFAULT 0 NOT NULL CHECK (BaseMoney BETWEEN 0 AND 99999999999999),
  BaseDscMoney REAL DEFAULT 0 CHECK (BaseDscMoney BETWEEN 0 AND 99999999999999),
  AddMoney     REAL DEFAULT 0 CHECK (AddMoney BETWEEN 0 AND 99999999999999),
  AddDscMoney  REAL DEFAULT 0 CHECK (AddDscMoney BETWEEN 0 AND 99999999999999),
  SaleMaxIn    REAL DEFAULT 0 CHECK (SaleMaxIn BETWEEN 0 AND 99999999999999),
  PRIMARY KEY (BillNo, ListCode, BaseMoney)
) WITHOUT ROWID;

-- Gifts, exchange purchases and free goods (MZZP, MZHG, MZZM): the tiers, one article each.
CREATE TABLE tProMzScheme (
  BillNo      TEXT NOT NULL,
  SerialNo    INTEGER NOT NULL,
  PluCode     TEXT NOT NULL,
  BaseConType TEXT DEFAULT 'SUM' CHECK (BaseConType IN ('SUM', 'NUM')),
  BaseConNum  REAL DEFAULT 0 CHECK (BaseConNum BETWEEN 0 AND 99999999999999),
  BaseDscType TEXT DEFAULT 'SUM' CHECK (BaseDscType IN ('SUM', 'NUM')),
  BaseDscNum  REAL DEFAULT 0 CHECK (BaseDscNum BETWEEN 0 AND 99999999999999),
  AddConNum   REAL DEFAULT 0 CHECK (AddConNum BETWEEN 0 AND 99999999999999),
  AddDscNum   REAL DEFAULT 0 CHECK (AddDscNum BETWEEN 0 AND 99999999999999),
  SaleMaxIn   REAL DEFAULT 0 CHECK (SaleMaxIn BETWEEN 0 AND 99999999999999),
  DscPrice    REAL DEFAULT 0 CHECK (DscPrice BETWEEN 0 AND 99999999999999),
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Buy some, get some (MZDP): the tiers, each with its goods.
CREATE TABLE tProMzPluAct (
  BillNo      TEXT NOT NULL,
  SerialNo    INTEGER NOT NULL,
  DataId      TEXT DEFAULT '0' NOT NULL,
  PluCode     TEXT NOT NULL,
  PluType     TEXT DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  BaseConType TEXT DEFAULT 'NUM' CHECK (BaseConType IN ('SUM', 'NUM')),
  BaseConNum  REAL DEFAULT 0 CHECK (BaseConNum BETWEEN 0 AND 99999999999999),
  BaseDscType TEXT DEFAULT 'NUM' CHECK (BaseDscType IN ('SUM', 'NUM')),
  BaseDscNum  REAL DEFAULT 0 CHECK (BaseDscNum BETWEEN 0 AND 99999999999999),
  AddConNum   REAL DEFAULT 0 CHECK (AddConNum BETWEEN 0 AND 99999999999999),
  AddDscNum   REAL DEFAULT 0 CHECK (AddDscNum BETWEEN 0 AND 99999999999999),
  SaleMaxIn   REAL DEFAULT 0 CHECK (SaleMaxIn BETWEEN 0 AND 99999999999999),
  PRIMARY KEY (BillNo, SerialNo, DataId, PluCode)
) WITHOUT ROWID;
