-- The tables that the engine reads, for SQLite. docs/tables.md says what each column means.
--
-- The engine asks for rows without an order, and the order in which they come decides what a customer gets where two
-- rows of a rule name the same goods. So each table is stored by its key, which is the one road to its rows: they come
-- in the order of their numbers, in every kind of database. An index on the goods could change that order from one day
-- to the next.

-- Ordinary promotions (PTXS, PTPL, PTOS): which goods, and what they get. One row a condition and its action.
CREATE TABLE tProPrjDirectProAct (
  BillNo        TEXT NOT NULL,
  SerialNo      INTEGER NOT NULL,
  PluCode       TEXT NOT NULL,
  PluType       TEXT DEFAULT 'PLU',
  InRange       TEXT DEFAULT 'IN',
  DscType       TEXT DEFAULT '',
  DscPrice      REAL DEFAULT 0,
  DscRate       REAL DEFAULT 0,
  SaleCount     REAL DEFAULT 0,
  TradeMaxCount REAL DEFAULT 0,
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Combinations: the price tiers of a free combination (ZHZY), the slots of a set menu (ZHZX), the price form of a fixed
-- combination (ZHGD, one row).
CREATE TABLE tProPrjCombProAct (
  BillNo     TEXT NOT NULL,
  SerialNo   INTEGER NOT NULL,
  SaleCount  REAL DEFAULT 0,
  PriceType  TEXT DEFAULT '',
  PriceTotal REAL DEFAULT 0,
  ProActCode TEXT DEFAULT '',
  ProActname TEXT DEFAULT '',
  IsRequired INTEGER DEFAULT 0,
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Combinations (ZHZY, ZHZX, ZHTJ, ZHGD): the goods.
CREATE TABLE tProPrjCombPluSet (
  BillNo     TEXT NOT NULL,
  SerialNo   INTEGER NOT NULL,
  ProActCode TEXT DEFAULT '',
  PluCode    TEXT NOT NULL,
  PluType    TEXT DEFAULT 'PLU',
  SaleCount  REAL DEFAULT 0,
  DscType    TEXT DEFAULT '',
  DscPrice   REAL DEFAULT 0,
  DscRate    REAL DEFAULT 0,
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Combination by condition (ZHTJ): what has to be bought.
CREATE TABLE tProCombConditionAct (
  BillNo     TEXT NOT NULL,
  SerialNo   INTEGER NOT NULL,
  PluCode    TEXT NOT NULL,
  PluType    TEXT DEFAULT 'PLU',
  SaleCount  REAL DEFAULT 0,
  PriceTotal REAL DEFAULT 0,
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Combination by condition (ZHTJ): what all its conditions together have to reach.
CREATE TABLE tProPrjCombCtrl (
  BillNo     TEXT NOT NULL,
  SerialNo   INTEGER NOT NULL,
  PriceTotal REAL DEFAULT 0,
  CountTotal REAL DEFAULT 0,
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Full-amount reduction (MZMJ): the offers of a rule.
CREATE TABLE tpromzlist (
  BillNo      TEXT NOT NULL,
  ListCode    TEXT NOT NULL,
  ConAreaType TEXT DEFAULT 'ALL',
  RstAreaType TEXT DEFAULT 'ALL',
  MaxDiscount REAL DEFAULT 0,
  DscIntoPlu  TEXT DEFAULT '0',
  PRIMARY KEY (BillNo, ListCode)
) WITHOUT ROWID;

-- Full-amount promotions (MZMJ, MZZP, MZHG, MZZM): the goods that count towards the threshold.
CREATE TABLE tProMzConPluSet (
  BillNo   TEXT NOT NULL,
  ListCode TEXT DEFAULT '0' NOT NULL,
  SerialNo INTEGER NOT NULL,
  DataId   TEXT DEFAULT '0' NOT NULL,
  PluCode  TEXT NOT NULL,
  PluType  TEXT DEFAULT 'PLU',
  InRange  TEXT DEFAULT 'IN',
  PRIMARY KEY (BillNo, ListCode, SerialNo, DataId)
) WITHOUT ROWID;

-- Full-amount reduction (MZMJ): the tiers of an offer.
CREATE TABLE tProMzDiscountAct (
  BillNo       TEXT NOT NULL,
  ListCode     TEXT NOT NULL,
  DscType      TEXT DEFAULT 'PRC',
  BaseMoney    REAL DEFAULT 0 NOT NULL,
  BaseDscMoney REAL DEFAULT 0,
  AddMoney     REAL DEFAULT 0,
  AddDscMoney  REAL DEFAULT 0,
  SaleMaxIn    REAL DEFAULT 0,
  PRIMARY KEY (BillNo, ListCode, BaseMoney)
) WITHOUT ROWID;

-- Gifts, exchange purchases and free goods (MZZP, MZHG, MZZM): the tiers, one article each.
CREATE TABLE tProMzScheme (
  BillNo      TEXT NOT NULL,
  SerialNo    INTEGER NOT NULL,
  PluCode     TEXT NOT NULL,
  BaseConType TEXT DEFAULT 'SUM',
  BaseConNum  REAL DEFAULT 0,
  BaseDscType TEXT DEFAULT 'SUM',
  BaseDscNum  REAL DEFAULT 0,
  AddConNum   REAL DEFAULT 0,
  AddDscNum   REAL DEFAULT 0,
  SaleMaxIn   REAL DEFAULT 0,
  DscPrice    REAL DEFAULT 0,
  PRIMARY KEY (BillNo, SerialNo)
) WITHOUT ROWID;

-- Buy some, get some (MZDP): the tiers, each with its goods.
CREATE TABLE tProMzPluAct (
  BillNo      TEXT NOT NULL,
  SerialNo    INTEGER NOT NULL,
  DataId      TEXT DEFAULT '0' NOT NULL,
  PluCode     TEXT NOT NULL,
  PluType     TEXT DEFAULT 'PLU',
  BaseConType TEXT DEFAULT 'NUM',
  BaseConNum  REAL DEFAULT 0,
  BaseDscType TEXT DEFAULT 'NUM',
  BaseDscNum  REAL DEFAULT 0,
  AddConNum   REAL DEFAULT 0,
  AddDscNum   REAL DEFAULT 0,
  SaleMaxIn   REAL DEFAULT 0,
  PRIMARY KEY (BillNo, SerialNo, DataId, PluCode)
) WITHOUT ROWID;
