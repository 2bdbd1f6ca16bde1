-- The tables that the engine reads, for Oracle. docs/tables.md says what each column means.
--
-- An empty text is NULL here: give every row a PluCode, and ListCode and DataId a value of their own ("0" will do).
--
-- The engine asks for rows without an order, and the order in which they come decides what a customer gets where two
-- rows of a rule name the same goods. So each table is stored by its key, which is the one road to its rows: they come
-- in the order of their numbers, in every kind of database. An index on the goods could change that order from one day
-- to the next.
--
-- The checks refuse a word that no promotion knows and an amount below 0: the engine would pass such a row over, or take
-- it for something else, without a word. They ask no more than every promotion that reads the table can live with. A
-- missing value passes.

-- Ordinary promotions (PTXS, PTPL, PTOS): which goods, and what they get. One row a condition and its action.
CREATE TABLE tProPrjDirectProAct (
  BillNo        VARCHAR2(40 CHAR) NOT NULL,
  SerialNo      NUMBER(10) NOT NULL,
  PluCode       VARCHAR2(40 CHAR) NOT NULL,
  PluType       VARCHAR2(8 CHAR) DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  InRange       VARCHAR2(8 CHAR) DEFAULT 'IN' CHECK (InRange IN ('IN', 'NOT')),
  DscType       VARCHAR2(8 CHAR) CHECK (DscType IN ('PRC', 'RAT', '2')),
  DscPrice      NUMBER(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  DscRate       NUMBER(18,4) DEFAULT 0 CHECK (DscRate >= 0),
  SaleCount     NUMBER(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  TradeMaxCount NUMBER(18,4) DEFAULT 0 CHECK (TradeMaxCount >= 0),
  CHECK (DscType IS NOT NULL OR InRange = 'NOT'),
  CONSTRAINT pk_tProPrjDirectProAct PRIMARY KEY (BillNo, SerialNo)
)
  ORGANIZATION INDEX;

-- Combinations: the price tiers of a free combination (ZHZY), the slots of a set menu (ZHZX), the price form of a fixed
-- combination (ZHGD, one row).
CREATE TABLE tProPrjCombProAct (
  BillNo     VARCHAR2(40 CHAR) NOT NULL,
  SerialNo   NUMBER(10) NOT NULL,
  SaleCount  NUMBER(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  PriceType  VARCHAR2(8 CHAR) CHECK (PriceType IN ('DP', 'TC', '2')),
  PriceTotal NUMBER(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  ProActCode VARCHAR2(40 CHAR),
  ProActname VARCHAR2(100 CHAR),
  IsRequired NUMBER(1) DEFAULT 0 CHECK (IsRequired IN (0, 1)),
  CONSTRAINT pk_tProPrjCombProAct PRIMARY KEY (BillNo, SerialNo)
)
  ORGANIZATION INDEX;

-- Combinations (ZHZY, ZHZX, ZHTJ, ZHGD): the goods.
CREATE TABLE tProPrjCombPluSet (
  BillNo     VARCHAR2(40 CHAR) NOT NULL,
  SerialNo   NUMBER(10) NOT NULL,
  ProActCode VARCHAR2(40 CHAR),
  PluCode    VARCHAR2(40 CHAR) NOT NULL,
  PluType    VARCHAR2(8 CHAR) DEFAULT 'PLU',
  SaleCount  NUMBER(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  DscType    VARCHAR2(8 CHAR) CHECK (DscType IN ('PRC', 'RAT', '2')),
  DscPrice   NUMBER(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  DscRate    NUMBER(18,4) DEFAULT 0 CHECK (DscRate >= 0),
  CONSTRAINT pk_tProPrjCombPluSet PRIMARY KEY (BillNo, SerialNo)
)
  ORGANIZATION INDEX;

-- Combination by condition (ZHTJ): what has to be bought.
CREATE TABLE tProCombConditionAct (
  BillNo     VARCHAR2(40 CHAR) NOT NULL,
  SerialNo   NUMBER(10) NOT NULL,
  PluCode    VARCHAR2(40 CHAR) NOT NULL,
  PluType    VARCHAR2(8 CHAR) DEFAULT 'PLU',
  SaleCount  NUMBER(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  PriceTotal NUMBER(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  CONSTRAINT pk_tProCombConditionAct PRIMARY KEY (BillNo, SerialNo)
)
  ORGANIZATION INDEX;

-- Combination by condition (ZHTJ): what all its conditions together have to reach.
CREATE TABLE tProPrjCombCtrl (
  BillNo     VARCHAR2(40 CHAR) NOT NULL,
  SerialNo   NUMBER(10) NOT NULL,
  PriceTotal NUMBER(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  CountTotal NUMBER(18,4) DEFAULT 0 CHECK (CountTotal >= 0),
  CONSTRAINT pk_tProPrjCombCtrl PRIMARY KEY (BillNo, SerialNo)
)
  ORGANIZATION INDEX;

-- Full-amount reduction (MZMJ): the offers of a rule.
CREATE TABLE tpromzlist (
  BillNo      VARCHAR2(40 CHAR) NOT NULL,
  ListCode    VARCHAR2(40 CHAR) NOT NULL,
  ConAreaType VARCHAR2(8 CHAR) DEFAULT 'ALL' CHECK (ConAreaType IN ('ALL', 'DES')),
  RstAreaType VARCHAR2(8 CHAR) DEFAULT 'ALL',
  MaxDiscount NUMBER(18,4) DEFAULT 0 CHECK (MaxDiscount >= 0),
  DscIntoPlu  VARCHAR2(8 CHAR) DEFAULT '0' CHECK (DscIntoPlu IN ('0', '1')),
  CONSTRAINT pk_tpromzlist PRIMARY KEY (BillNo, ListCode)
)
  ORGANIZATION INDEX;

-- Full-amount promotions (MZMJ, MZZP, MZHG, MZZM): the goods that count towards the threshold.
CREATE TABLE tProMzConPluSet (
  BillNo   VARCHAR2(40 CHAR) NOT NULL,
  ListCode VARCHAR2(40 CHAR) DEFAULT '0' NOT NULL,
  SerialNo NUMBER(10) NOT NULL,
  DataId   VARCHAR2(40 CHAR) DEFAULT '0' NOT NULL,
  PluCode  VARCHAR2(40 CHAR) NOT NULL,
  PluType  VARCHAR2(8 CHAR) DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  InRange  VARCHAR2(8 CHAR) DEFAULT 'IN' CHECK (InRange IN ('IN', 'NOT')),
  CONSTRAINT pk_tProMzConPluSet PRIMARY KEY (BillNo, ListCode, SerialNo, DataId)
)
  ORGANIZATION INDEX;

-- Full-amount reduction (MZMJ): the tiers of an offer.
CREATE TABLE tProMzDiscountAct (
  BillNo       VARCHAR2(40 CHAR) NOT NULL,
  ListCode     VARCHAR2(40 CHAR) NOT NULL,
  DscType      VARCHAR2(8 CHAR) DEFAULT 'PRC',
  BaseMoney    NUMBER(18,4) DEFAULT 0 NOT NULL CHECK (BaseMoney >= 0),
  BaseDscMoney NUMBER(18,4) DEFAULT 0 CHECK (BaseDscMoney >= 0),
  AddMoney     NUMBER(18,4) DEFAULT 0 CHECK (AddMoney >= 0),
  AddDscMoney  NUMBER(18,4) DEFAULT 0 CHECK (AddDscMoney >= 0),
  SaleMaxIn    NUMBER(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  CONSTRAINT pk_tProMzDiscountAct PRIMARY KEY (BillNo, ListCode, BaseMoney)
)
  ORGANIZATION INDEX;

-- Gifts, exchange purchases and free goods (MZZP, MZHG, MZZM): the tiers, one article each.
CREATE TABLE tProMzScheme (
  BillNo      VARCHAR2(40 CHAR) NOT NULL,
  SerialNo    NUMBER(10) NOT NULL,
  PluCode     VARCHAR2(40 CHAR) NOT NULL,
  BaseConType VARCHAR2(8 CHAR) DEFAULT 'SUM' CHECK (BaseConType IN ('SUM', 'NUM')),
  BaseConNum  NUMBER(18,4) DEFAULT 0 CHECK (BaseConNum >= 0),
  BaseDscType VARCHAR2(8 CHAR) DEFAULT 'SUM' CHECK (BaseDscType IN ('SUM', 'NUM')),
  BaseDscNum  NUMBER(18,4) DEFAULT 0 CHECK (BaseDscNum >= 0),
  AddConNum   NUMBER(18,4) DEFAULT 0 CHECK (AddConNum >= 0),
  AddDscNum   NUMBER(18,4) DEFAULT 0 CHECK (AddDscNum >= 0),
  SaleMaxIn   NUMBER(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  DscPrice    NUMBER(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  CONSTRAINT pk_tProMzScheme PRIMARY KEY (BillNo, SerialNo)
)
  ORGANIZATION INDEX;

-- Buy some, get some (MZDP): the tiers, each with its goods.
CREATE TABLE tProMzPluAct (
  BillNo      VARCHAR2(40 CHAR) NOT NULL,
  SerialNo    NUMBER(10) NOT NULL,
  DataId      VARCHAR2(40 CHAR) DEFAULT '0' NOT NULL,
  PluCode     VARCHAR2(40 CHAR) NOT NULL,
  PluType     VARCHAR2(8 CHAR) DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  BaseConType VARCHAR2(8 CHAR) DEFAULT 'NUM' CHECK (BaseConType IN ('SUM', 'NUM')),
  BaseConNum  NUMBER(18,4) DEFAULT 0 CHECK (BaseConNum >= 0),
  BaseDscType VARCHAR2(8 CHAR) DEFAULT 'NUM' CHECK (BaseDscType IN ('SUM', 'NUM')),
  BaseDscNum  NUMBER(18,4) DEFAULT 0 CHECK (BaseDscNum >= 0),
  AddConNum   NUMBER(18,4) DEFAULT 0 CHECK (AddConNum >= 0),
  AddDscNum   NUMBER(18,4) DEFAULT 0 CHECK (AddDscNum >= 0),
  SaleMaxIn   NUMBER(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  CONSTRAINT pk_tProMzPluAct PRIMARY KEY (BillNo, SerialNo, DataId, PluCode)
)
  ORGANIZATION INDEX;
