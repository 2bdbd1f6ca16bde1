-- The tables that the engine reads, for MySQL and MariaDB. docs/tables.md says what each column means.
--
-- Codes are compared byte by byte, as the engine does: hence the binary collation. Upper and lower case count in the
-- tables' names.
--
-- The engine asks for rows without an order, and the order in which they come decides what a customer gets where two
-- rows of a rule name the same goods. So each table is stored by its key, which is the one road to its rows: they come
-- in the order of their numbers, in every kind of database. An index on the goods could change that order from one day
-- to the next.
--
-- The checks refuse a word that no promotion knows and an amount below 0: the engine would pass such a row over, or take
-- it for something else, without a word. They ask no more than every promotion that reads the table can live with. A
-- missing value passes.
-- MariaDB has kept checks since 10.2, MySQL since 8.0.16; older servers read them and forget them.

-- Ordinary promotions (PTXS, PTPL, PTOS): which goods, and what they get. One row a condition and its action.
CREATE TABLE tProPrjDirectProAct (
  BillNo        VARCHAR(40) NOT NULL,
  SerialNo      INT NOT NULL,
  PluCode       VARCHAR(40) NOT NULL,
  PluType       VARCHAR(8) DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  InRange       VARCHAR(8) DEFAULT 'IN' CHECK (InRange IN ('IN', 'NOT')),
  DscType       VARCHAR(8) DEFAULT '' CHECK (DscType IN ('', 'PRC', 'RAT', '2')),
  DscPrice      DECIMAL(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  DscRate       DECIMAL(18,4) DEFAULT 0 CHECK (DscRate >= 0),
  SaleCount     DECIMAL(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  TradeMaxCount DECIMAL(18,4) DEFAULT 0 CHECK (TradeMaxCount >= 0),
  CHECK (COALESCE(DscType, '') <> '' OR InRange = 'NOT'),
  PRIMARY KEY (BillNo, SerialNo)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Combinations: the price tiers of a free combination (ZHZY), the slots of a set menu (ZHZX), the price form of a fixed
-- combination (ZHGD, one row).
CREATE TABLE tProPrjCombProAct (
  BillNo     VARCHAR(40) NOT NULL,
  SerialNo   INT NOT NULL,
  SaleCount  DECIMAL(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  PriceType  VARCHAR(8) DEFAULT '' CHECK (PriceType IN ('', 'DP', 'TC', '2')),
  PriceTotal DECIMAL(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  ProActCode VARCHAR(40) DEFAULT '',
  ProActname VARCHAR(100) DEFAULT '',
  IsRequired SMALLINT DEFAULT 0 CHECK (IsRequired IN (0, 1)),
  PRIMARY KEY (BillNo, SerialNo)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Combinations (ZHZY, ZHZX, ZHTJ, ZHGD): the goods.
CREATE TABLE tProPrjCombPluSet (
  BillNo     VARCHAR(40) NOT NULL,
  SerialNo   INT NOT NULL,
  ProActCode VARCHAR(40) DEFAULT '',
  PluCode    VARCHAR(40) NOT NULL,
  PluType    VARCHAR(8) DEFAULT 'PLU',
  SaleCount  DECIMAL(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  DscType    VARCHAR(8) DEFAULT '' CHECK (DscType IN ('', 'PRC', 'RAT', '2')),
  DscPrice   DECIMAL(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  DscRate    DECIMAL(18,4) DEFAULT 0 CHECK (DscRate >= 0),
  PRIMARY KEY (BillNo, SerialNo)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Combination by condition (ZHTJ): what has to be bought.
CREATE TABLE tProCombConditionAct (
  BillNo     VARCHAR(40) NOT NULL,
  SerialNo   INT NOT NULL,
  PluCode    VARCHAR(40) NOT NULL,
  PluType    VARCHAR(8) DEFAULT 'PLU',
  SaleCount  DECIMAL(18,4) DEFAULT 0 CHECK (SaleCount >= 0),
  PriceTotal DECIMAL(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  PRIMARY KEY (BillNo, SerialNo)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Combination by condition (ZHTJ): what all its conditions together have to reach.
CREATE TABLE tProPrjCombCtrl (
  BillNo     VARCHAR(40) NOT NULL,
  SerialNo   INT NOT NULL,
  PriceTotal DECIMAL(18,4) DEFAULT 0 CHECK (PriceTotal >= 0),
  CountTotal DECIMAL(18,4) DEFAULT 0 CHECK (CountTotal >= 0),
  PRIMARY KEY (BillNo, SerialNo)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Full-amount reduction (MZMJ): the offers of a rule.
CREATE TABLE tpromzlist (
  BillNo      VARCHAR(40) NOT NULL,
  ListCode    VARCHAR(40) NOT NULL,
  ConAreaType VARCHAR(8) DEFAULT 'ALL' CHECK (ConAreaType IN ('ALL', 'DES')),
  RstAreaType VARCHAR(8) DEFAULT 'ALL',
  MaxDiscount DECIMAL(18,4) DEFAULT 0 CHECK (MaxDiscount >= 0),
  DscIntoPlu  VARCHAR(8) DEFAULT '0' CHECK (DscIntoPlu IN ('', '0', '1')),
  PRIMARY KEY (BillNo, ListCode)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Full-amount promotions (MZMJ, MZZP, MZHG, MZZM): the goods that count towards the threshold.
CREATE TABLE tProMzConPluSet (
  BillNo   VARCHAR(40) NOT NULL,
  ListCode VARCHAR(40) DEFAULT '0' NOT NULL,
  SerialNo INT NOT NULL,
  DataId   VARCHAR(40) DEFAULT '0' NOT NULL,
  PluCode  VARCHAR(40) NOT NULL,
  PluType  VARCHAR(8) DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  InRange  VARCHAR(8) DEFAULT 'IN' CHECK (InRange IN ('IN', 'NOT')),
  PRIMARY KEY (BillNo, ListCode, SerialNo, DataId)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Full-amount reduction (MZMJ): the tiers of an offer.
CREATE TABLE tProMzDiscountAct (
  BillNo       VARCHAR(40) NOT NULL,
  ListCode     VARCHAR(40) NOT NULL,
  DscType      VARCHAR(8) DEFAULT 'PRC',
  BaseMoney    DECIMAL(18,4) DEFAULT 0 NOT NULL CHECK (BaseMoney >= 0),
  BaseDscMoney DECIMAL(18,4) DEFAULT 0 CHECK (BaseDscMoney >= 0),
  AddMoney     DECIMAL(18,4) DEFAULT 0 CHECK (AddMoney >= 0),
  AddDscMoney  DECIMAL(18,4) DEFAULT 0 CHECK (AddDscMoney >= 0),
  SaleMaxIn    DECIMAL(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  PRIMARY KEY (BillNo, ListCode, BaseMoney)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Gifts, exchange purchases and free goods (MZZP, MZHG, MZZM): the tiers, one article each.
CREATE TABLE tProMzScheme (
  BillNo      VARCHAR(40) NOT NULL,
  SerialNo    INT NOT NULL,
  PluCode     VARCHAR(40) NOT NULL,
  BaseConType VARCHAR(8) DEFAULT 'SUM' CHECK (BaseConType IN ('SUM', 'NUM')),
  BaseConNum  DECIMAL(18,4) DEFAULT 0 CHECK (BaseConNum >= 0),
  BaseDscType VARCHAR(8) DEFAULT 'SUM' CHECK (BaseDscType IN ('SUM', 'NUM')),
  BaseDscNum  DECIMAL(18,4) DEFAULT 0 CHECK (BaseDscNum >= 0),
  AddConNum   DECIMAL(18,4) DEFAULT 0 CHECK (AddConNum >= 0),
  AddDscNum   DECIMAL(18,4) DEFAULT 0 CHECK (AddDscNum >= 0),
  SaleMaxIn   DECIMAL(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  DscPrice    DECIMAL(18,4) DEFAULT 0 CHECK (DscPrice >= 0),
  PRIMARY KEY (BillNo, SerialNo)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;

-- Buy some, get some (MZDP): the tiers, each with its goods.
CREATE TABLE tProMzPluAct (
  BillNo      VARCHAR(40) NOT NULL,
  SerialNo    INT NOT NULL,
  DataId      VARCHAR(40) DEFAULT '0' NOT NULL,
  PluCode     VARCHAR(40) NOT NULL,
  PluType     VARCHAR(8) DEFAULT 'PLU' CHECK (PluType IN ('PLU', 'CAT', 'BRD')),
  BaseConType VARCHAR(8) DEFAULT 'NUM' CHECK (BaseConType IN ('SUM', 'NUM')),
  BaseConNum  DECIMAL(18,4) DEFAULT 0 CHECK (BaseConNum >= 0),
  BaseDscType VARCHAR(8) DEFAULT 'NUM' CHECK (BaseDscType IN ('SUM', 'NUM')),
  BaseDscNum  DECIMAL(18,4) DEFAULT 0 CHECK (BaseDscNum >= 0),
  AddConNum   DECIMAL(18,4) DEFAULT 0 CHECK (AddConNum >= 0),
  AddDscNum   DECIMAL(18,4) DEFAULT 0 CHECK (AddDscNum >= 0),
  SaleMaxIn   DECIMAL(18,4) DEFAULT 0 CHECK (SaleMaxIn >= 0),
  PRIMARY KEY (BillNo, SerialNo, DataId, PluCode)
)
  ENGINE = InnoDB DEFAULT CHARACTER SET utf8mb4 COLLATE utf8mb4_bin;
