-- The detail rows of the sample store's promotions: what samples/store/rules/*.xml says when, where and for whom, these
-- rows say of which goods and for how much. The header of a rule and its rows meet in BillNo.
-- Promotions that pay, give or take coupons (MZZF, MZZQ, MZYQ) have no rows: their XML says it all.

BEGIN;

-- Ordinary promotions ---------------------------------------------------------------------------------------------------
-- DscType PRC: the new price is DscPrice. RAT: DscRate percent off. 2: DscPrice off.
-- SaleCount: PTPL from so many pieces on; PTOS one of so many. TradeMaxCount: at most so many pieces a sale, 0 for no limit.

-- Juice of the week: orange juice at 1.99.
INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, PluType, InRange, DscType, DscPrice, DscRate, SaleCount, TradeMaxCount)
VALUES ('PTXS-01', 1, '100101', 'PLU', 'IN', 'PRC', 1.99, 0, 1, 0);

-- Fruit 20 % off at weekends, but not the exotic basket.
INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, PluType, InRange, DscType, DscPrice, DscRate, SaleCount, TradeMaxCount)
VALUES ('PTXS-02', 1, 'FRUIT', 'CAT', 'IN', 'RAT', 0, 20, 1, 0),
       ('PTXS-02', 2, '400199', 'PLU', 'NOT', 'RAT', 0, 0, 1, 0);

-- Shampoo 1.00 off, two pieces a sale.
INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, PluType, InRange, DscType, DscPrice, DscRate, SaleCount, TradeMaxCount)
VALUES ('PTXS-03', 1, '600101', 'PLU', 'IN', '2', 1.00, 0, 1, 2);

-- Members: all coffee 10 % off.
INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, PluType, InRange, DscType, DscPrice, DscRate, SaleCount, TradeMaxCount)
VALUES ('PTXS-04', 1, 'COFFEE', 'CAT', 'IN', 'RAT', 0, 10, 1, 0);

-- From six yoghurts on, 0.65 each, whatever the flavour.
INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, PluType, InRange, DscType, DscPrice, DscRate, SaleCount, TradeMaxCount)
VALUES ('PTPL-01', 1, 'YOGHURT', 'CAT', 'IN', 'PRC', 0.65, 0, 6, 0);

-- Every second chocolate bar 1.00. This type goes by the goods alone: one row for each kind of bar.
INSERT INTO tProPrjDirectProAct (BillNo, SerialNo, PluCode, PluType, InRange, DscType, DscPrice, DscRate, SaleCount, TradeMaxCount)
VALUES ('PTOS-01', 1, '500101', 'PLU', 'IN', 'PRC', 1.00, 0, 2, 0),
       ('PTOS-01', 2, '500102', 'PLU', 'IN', 'PRC', 1.00, 0, 2, 0);

-- Combinations ----------------------------------------------------------------------------------------------------------

-- Toothpaste, three for two: a set of three for 5.80 (DP); each costs 2.90.
INSERT INTO tProPrjCombProAct (BillNo, SerialNo, SaleCount, PriceType, PriceTotal)
VALUES ('ZHZY-01', 1, 3, 'DP', 5.80);
INSERT INTO tProPrjCombPluSet (BillNo, SerialNo, PluCode, PluType)
VALUES ('ZHZY-01', 1, '600301', 'PLU'),
       ('ZHZY-01', 2, '600302', 'PLU'),
       ('ZHZY-01', 3, '600303', 'PLU');

-- Snack menu: a snack and a drink have to be there, a dessert may.
INSERT INTO tProPrjCombProAct (BillNo, SerialNo, ProActCode, ProActname, IsRequired)
VALUES ('ZHZX-01', 1, 'SNACK', 'Snack', 1),
       ('ZHZX-01', 2, 'DRINK', 'Drink', 1),
       ('ZHZX-01', 3, 'SWEET', 'Dessert', 0);
INSERT INTO tProPrjCombPluSet (BillNo, SerialNo, ProActCode, PluCode, PluType, SaleCount, DscPrice)
VALUES ('ZHZX-01', 1, 'SNACK', '800101', 'PLU', 1, 4.50),
       ('ZHZX-01', 2, 'SNACK', '800102', 'PLU', 1, 4.50),
       ('ZHZX-01', 3, 'DRINK', '800201', 'PLU', 1, 1.50),
       ('ZHZX-01', 4, 'DRINK', '800202', 'PLU', 1, 1.50),
       ('ZHZX-01', 5, 'SWEET', '800301', 'PLU', 1, 1.00);

-- Care goods for 15.00 or more: shower gel 20 % off.
INSERT INTO tProCombConditionAct (BillNo, SerialNo, PluCode, PluType, SaleCount, PriceTotal)
VALUES ('ZHTJ-01', 1, 'CARE', 'CAT', 0, 15.00);
INSERT INTO tProPrjCombPluSet (BillNo, SerialNo, PluCode, PluType, SaleCount, DscType, DscPrice, DscRate)
VALUES ('ZHTJ-01', 1, '600201', 'PLU', 0, 'RAT', 0, 20);

-- Pasta night: two spaghetti, one sauce, one parmesan for 8.50 together (TC).
INSERT INTO tProPrjCombProAct (BillNo, SerialNo, PriceType, PriceTotal)
VALUES ('ZHGD-01', 1, 'TC', 8.50);
INSERT INTO tProPrjCombPluSet (BillNo, SerialNo, PluCode, PluType, SaleCount, DscPrice)
VALUES ('ZHGD-01', 1, '700101', 'PLU', 2, 0),
       ('ZHGD-01', 2, '700102', 'PLU', 1, 0),
       ('ZHGD-01', 3, '700103', 'PLU', 1, 0);

-- Full-amount promotions ------------------------------------------------------------------------------------------------

-- Buy three croissants, get one.
INSERT INTO tProMzPluAct (BillNo, SerialNo, DataId, PluCode, PluType, BaseConType, BaseConNum, BaseDscType, BaseDscNum,
                          AddConNum, AddDscNum, SaleMaxIn)
VALUES ('MZDP-01', 1, '1', '300201', 'PLU', 'NUM', 3, 'NUM', 1, 0, 0, 0);

-- Dairy goods for 10.00 or more: one bread free.
INSERT INTO tProMzConPluSet (BillNo, ListCode, DataId, SerialNo, PluCode, PluType, InRange)
VALUES ('MZZM-01', '1', '1', 1, 'DAIRY', 'CAT', 'IN');
INSERT INTO tProMzScheme (BillNo, SerialNo, PluCode, BaseConType, BaseConNum, BaseDscType, BaseDscNum, AddConNum, AddDscNum,
                          SaleMaxIn, DscPrice)
VALUES ('MZZM-01', 1, '300101', 'SUM', 10.00, 'NUM', 1, 0, 0, 1, 0);

-- From 50.00 on 5.00 off, 1.00 more for every further 10.00, at most 15.00, on the whole sale.
INSERT INTO tpromzlist (BillNo, ListCode, ConAreaType, RstAreaType, MaxDiscount, DscIntoPlu)
VALUES ('MZMJ-01', '1', 'ALL', 'ALL', 15.00, '1');
INSERT INTO tProMzDiscountAct (BillNo, ListCode, DscType, BaseMoney, BaseDscMoney, AddMoney, AddDscMoney, SaleMaxIn)
VALUES ('MZMJ-01', '1', 'PRC', 50.00, 5.00, 10.00, 1.00, 0);

-- From 60.00 on a shopping bag, free; from 30.00 on a mug for 2.00. No rows in tProMzConPluSet: the whole sale counts.
INSERT INTO tProMzScheme (BillNo, SerialNo, PluCode, BaseConType, BaseConNum, BaseDscType, BaseDscNum, AddConNum, AddDscNum,
                          SaleMaxIn, DscPrice)
VALUES ('MZZP-01', 1, '900101', 'SUM', 60.00, 'NUM', 1, 0, 0, 1, 0),
       ('MZHG-01', 1, '900201', 'SUM', 30.00, 'NUM', 1, 0, 0, 1, 2.00);

COMMIT;
