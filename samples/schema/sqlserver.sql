-- The tables that the engine reads, for SQL Server. docs/tables.md says what each column means.
--
-- Codes are compared byte by byte, as the engine does: hence the binary collation. NVARCHAR holds codes of every language.
-- The engine writes its values as 'text', which the server reads in the character set of the DATABASE: for Chinese codes
-- make that one with a collation that has them, CREATE DATABASE shop COLLATE Latin1_General_100_BIN2_UTF8 (SQL Server 2019
-- and later) or COLLATE Chinese_PRC_BIN2. In any other, the codes of a statement turn into question marks and no row fits.
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
  BillNo        NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  SerialNo      INT NOT NULL,
  PluCode       NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  PluType       NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  InRange       NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'IN' CHECK (InRange IN ('IN', 'NOT')),
  DscType       NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT '' CHECK (DscType IN ('', 'PRC', 'RAT', '2')),
  DscPrice      DECIMAL(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  DscRate       DECIMAL(18,4) DEFAULT 0 CHECK (DscRate >= 0),
  SaleCount     DECIMAL(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  TradeMaxCount DECIMAL(18,4) DEFAULT 0 CHECK (TradeMaxCount >= 0),
  CHECK (COALESCE(DscType, '') <> '' OR InRange = 'NOT'),
  PRIMARY KEY CLUSTERED (BillNo, SerialNo)
);

-- Combinations: the price tiers of a free combination (ZHZY), the slots of a set menu (ZHZX), the price form of a fixed
-- combination (ZHGD, one row).
CREATE TABLE tProPrjCombProAct (
  BillNo     NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  SerialNo   INT NOT NULL,
  SaleCount  DECIMAL(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  PriceType  NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT '' CHECK (PriceType IN ('', 'DP', 'TC', '2')),
  PriceTotal DECIMAL(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  ProActCode NVARCHAR(40) COLLATE Latin1_General_BIN2 DEFAULT '',
  ProActname NVARCHAR(100) COLLATE Latin1_General_BIN2 DEFAULT '',
  IsRequired SMALLINT DEFAULT 0 CHECK (IsRequired IN (0, 1)),
  PRIMARY KEY CLUSTERED (BillNo, SerialNo)
);

-- Combinations (ZHZY, ZHZX, ZHTJ, ZHGD): the goods.
CREATE TABLE tProPrjCombPluSet (
  BillNo     NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  SerialNo   INT NOT NULL,
  ProActCode NVARCHAR(40) COLLATE Latin1_General_BIN2 DEFAULT '',
  PluCode    NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  PluType    NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'PLU',
  SaleCount  DECIMAL(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  DscType    NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT '' CHECK (DscType IN ('', 'PRC', 'RAT', '2')),
  DscPrice   DECIMAL(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  DscRate    DECIMAL(18,4) DEFAULT 0 CHECK (DscRate >= 0),
  PRIMARY KEY CLUSTERED (BillNo, SerialNo)
);

-- Combination by condition (ZHTJ): what has to be bought.
CREATE TABLE tProCombConditionAct (
  BillNo     NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  SerialNo   INT NOT NULL,
  PluCode    NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  PluType    NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'PLU',
  SaleCount  DECIMAL(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  PriceTotal DECIMAL(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  PRIMARY KEY CLUSTERED (BillNo, SerialNo)
);

-- Combination by condition (ZHTJ): what all its conditions together have to reach.
CREATE TABLE tProPrjCombCtrl (
  BillNo     NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  SerialNo   INT NOT NULL,
  PriceTotal DECIMAL(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  CountTotal DECIMAL(18,4) DEFAULT 0 CHECK (CountTotal >= 0),
  PRIMARY KEY CLUSTERED (BillNo, SerialNo)
);

-- Full-amount reduction (MZMJ): the offers of a rule.
CREATE TABLE tpromzlist (
  BillNo      NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  ListCode    NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  ConAreaType NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'ALL' CHECK (ConAreaType IN ('ALL', 'DES')),
  RstAreaType NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'ALL',
  MaxDiscount DECIMAL(18,4) DEFAULT 0 CHECK (MaxDiscount >= 0),
  DscIntoPlu  NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT '0' CHECK (DscIntoPlu IN ('', '0', '1')),
  PRIMARY KEY CLUSTERED (BillNo, ListCode)
);

-- Full-amount promotions (MZMJ, MZZP, MZHG, MZZM): the goods that count towards the threshold.
CREATE TABLE tProMzConPluSet (
  BillNo   NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  ListCode NVARCHAR(40) COLLATE Latin1_General_BIN2 DEFAULT '0' NOT NULL,
  SerialNo INT NOT NULL,
  DataId   NVARCHAR(40) COLLATE Latin1_General_BIN2 DEFAULT '0' NOT NULL,
  PluCode  NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  PluType  NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  InRange  NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'IN' CHECK (InRange IN ('IN', 'NOT')),
  PRIMARY KEY CLUSTERED (BillNo, ListCode, SerialNo, DataId)
);

-- Full-amount reduction (MZMJ): the tiers of an offer.
CREATE TABLE tProMzDiscountAct (
  BillNo       NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  ListCode     NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  DscType      NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'PRC',
  BaseMoney    DECIMAL(18,4) DEFAULT 0 NOT NULL CHECK (BaseMoney >= 0),
  BaseDscMoney DECIMAL(18,4) DEFAULT 0 CHECK (BaseDscMoney >= 0),
  AddMoney     DECIMAL(18,4) DEFAULT 0 CHECK (AddMoney >= 0),
  AddDscMoney  DECIMAL(18,4) DEFAULT 0 CHECK (AddDscMoney >= 0),
  SaleMaxIn    DECIMAL(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  PRIMARY KEY CLUSTERED (BillNo, ListCode, BaseMoney)
);

-- Gifts, exchange purchases and free goods (MZZP, MZHG, MZZM): the tiers, one article each.
CREATE TABLE tProMzScheme (
  BillNo      NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  SerialNo    INT NOT NULL,
  PluCode     NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  BaseConType NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'SUM' CHECK (BaseConType IN ('SUM', 'NUM')),
  BaseConNum  DECIMAL(18,4) DEFAULT 0 CHECK (BaseConNum >= 0),
  BaseDscType NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'SUM' CHECK (BaseDscType IN ('SUM', 'NUM')),
  BaseDscNum  DECIMAL(18,4) DEFAULT 0 CHECK (BaseDscNum >= 0),
  AddConNum   DECIMAL(18,4) DEFAULT 0 CHECK (AddConNum >= 0),
  AddDscNum   DECIMAL(18,4) DEFAULT 0 CHECK (AddDscNum >= 0),
  SaleMaxIn   DECIMAL(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  DscPrice    DECIMAL(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  PRIMARY KEY CLUSTERED (BillNo, SerialNo)
);

-- Buy some, get some (MZDP): the tiers, each with its goods.
CREATE TABLE tProMzPluAct (
  BillNo      NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  SerialNo    INT NOT NULL,
  DataId      NVARCHAR(40) COLLATE Latin1_General_BIN2 DEFAULT '0' NOT NULL,
  PluCode     NVARCHAR(40) COLLATE Latin1_General_BIN2 NOT NULL,
  PluType     NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  BaseConType NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'NUM' CHECK (BaseConType IN ('SUM', 'NUM')),
  BaseConNum  DECIMAL(18,4) DEFAULT 0 CHECK (BaseConNum >= 0),
  BaseDscType NVARCHAR(8) COLLATE Latin1_General_BIN2 DEFAULT 'NUM' CHECK (BaseDscType IN ('SUM', 'NUM')),
  BaseDscNum  DECIMAL(18,4) DEFAULT 0 CHECK (BaseDscNum >= 0),
  AddConNum   DECIMAL(18,4) DEFAULT 0 CHECK (AddConNum >= 0),
  AddDscNum   DECIMAL(18,4) DEFAULT 0 CHECK (AddDscNum >= 0),
  SaleMaxIn   DECIMAL(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  PRIMARY KEY CLUSTERED (BillNo, SerialNo, DataId, PluCode)
);
