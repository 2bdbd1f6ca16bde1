"""A host in Python: the engine through ctypes, without Qt. Runs in a copy of the sample store.

host.py LIBRARY
"""

import ctypes
import pathlib
import sys
import unittest
import xml.etree.ElementTree as ElementTree

LIBRARY = sys.argv.pop(1)

SALE = """<?xml version="1.0" encoding="UTF-8"?>
<Sale BillNo="S-1" OrgCode="01" IsCalc="0">
  <Plu>
    <Row SerialNo="1" PluCode="100101" Price="2.50" PluCount="3" Total="7.50" PackCnt="1" CAT="JUICE" BRD="SUNNY"
         SaleDate="2024-06-15" SaleTime="10:00:00"/>
  </Plu>
</Sale>"""


def bind():
    """Loads the library and says what each call takes and gives."""
    engine = ctypes.CDLL(LIBRARY)
    text = ctypes.c_char_p
    engine.InitPromotion.argtypes = [text, text, text]
    engine.ClearPromotion.argtypes = [text, text]
    engine.CalcPromotion.argtypes = [text, text, text, text, text]
    engine.DeleteSaleSetByKey.argtypes = [text]
    engine.ClearSaleSetForNet.argtypes = [text]
    engine.GetState.argtypes = [text]
    engine.GetState.restype = text
    return engine


ENGINE = bind()


def calculate(key, mode, sale):
    """One call of CalcPromotion: code, message, result."""
    out = ctypes.create_string_buffer(1 << 20)
    message = ctypes.create_string_buffer(1024)
    code = ENGINE.CalcPromotion(key.encode(), mode.encode(), sale.encode(), out, message)
    return code, message.value.decode(), out.value.decode()


class PythonHost(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        assert ENGINE.BeginInitPro() == 0
        rule = pathlib.Path("rules/PTXS-01-juice.xml").read_bytes()
        message = ctypes.create_string_buffer(1024 + len(rule))
        assert ENGINE.InitPromotion(b"PTXS", rule, message) == 0, message.value
        assert ENGINE.FinishInitPro() == 0

    def test_state_is_free_after_loading(self):
        self.assertEqual(ENGINE.GetState(ctypes.create_string_buffer(64)), b"Free")

    def test_three_juices_for_1_99_each(self):
        code, message, result = calculate("python", "All", SALE)
        self.assertEqual((code, message), (0, "sucess"))
        sale = ElementTree.fromstring(result)
        self.assertEqual(sale.find("Plu/Data").get("Total"), "5.97")
        discount = sale.find("ProResult/Data")
        self.assertEqual(discount.get("DisMoney"), "1.53")
        self.assertEqual(discount.get("ProBillNo"), "PTXS-01")

    def test_children_of_the_result(self):
        result = ElementTree.fromstring(calculate("children", "All", SALE)[2])
        self.assertEqual([child.tag for child in result], ["Plu", "ProResult", "Apportion", "ProGifts", "ProCoupons"])

    def test_empty_key_is_told_in_chinese(self):
        code, message, result = calculate("", "All", SALE)
        self.assertEqual((code, message, result), (-1, "销售单主键为空！", ""))

    def test_a_forgotten_sale_starts_anew(self):
        calculate("forgotten", "All", SALE)
        self.assertEqual(ENGINE.DeleteSaleSetByKey(b"forgotten"), 0)
        result = ElementTree.fromstring(calculate("forgotten", "All", "<Sale BillNo='2' OrgCode='01' IsCalc='0'/>")[2])
        self.assertEqual(result.findall("Plu/Data"), [])

    def test_a_rule_that_is_refused_comes_back(self):
        message = ctypes.create_string_buffer(1024)
        self.assertEqual(ENGINE.InitPromotion(b"MZZQ", b"<a/>", message), -1)
        self.assertEqual(message.value, b"pro initialize failed<a/>")


if __name__ == "__main__":
    unittest.main()
