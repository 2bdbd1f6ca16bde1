"""Character references in a sale come back as UTF-8, in a result that a strict parser takes.

references_test.py LIBRARY
"""

import ctypes
import os
import sys
import tempfile
import unittest
from xml.parsers import expat

LIBRARY = sys.argv.pop(1)

DECLARATIONS = {
    "none": "",
    "without encoding": '<?xml version="1.0"?>',
    "latin": '<?xml version="1.0" encoding="ISO-8859-1"?>',
    "utf-8": '<?xml version="1.0" encoding="UTF-8"?>',
}


def values_of(result):
    """The text attributes of a result's first line, as expat reads them."""
    lines = []
    parser = expat.ParserCreate()
    parser.StartElementHandler = lambda name, attributes: lines.append(attributes) if name == "Data" else None
    parser.Parse(result, True)
    return lines[0]


class References(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.engine = ctypes.CDLL(LIBRARY)
        cls.folder = tempfile.TemporaryDirectory()
        os.chdir(cls.folder.name)

    @classmethod
    def tearDownClass(cls):
        os.chdir("/")
        cls.folder.cleanup()

    def code_of_goods(self, declaration, written):
        """The goods code of a line that was sent as written, from the result of mode All."""
        sale = f'{declaration}<S BillNo="1">x{written}<Plu>{written}<R SerialNo="1" PluCode="{written}" PluID="next"/></Plu></S>'
        out = ctypes.create_string_buffer(1 << 16)
        message = ctypes.create_string_buffer(1 << 16)
        self.engine.DeleteSaleSetByKey(b"k")
        self.assertEqual(self.engine.CalcPromotion(b"k", b"All", sale.encode(), out, message), 0)
        line = values_of(out.value)
        self.assertEqual(line["PluID"], "next")
        return line["PluCode"]

    def test_every_way_of_writing_under_every_declaration(self):
        texts = {
            "&#228;": "ä",
            "&#xE4;": "ä",
            "&#20013;": "中",
            "&#x4E2D;&#x6587;": "中文",
            "&#128512;": "😀",
            "&#x80;": "\x80",
            "&#127;": "\x7f",
            "K&#228;se &amp; Brot &lt;1&gt; &#65;&#x42;": "Käse & Brot <1> AB",
            "中&#228;中": "中ä中",
            "&#xD800;&#xDFFF;": "\ufffd\ufffd",
            "&#x110000;&#99999999999999999999;": "\ufffd\ufffd",
            "&#xFFFE;&#xFFFF;": "\ufffd\ufffd",
            "&#0000000000228;": "ä",
            "&amp;#xE4;": "&#xE4;",
            "&amp;#228;": "&#228;",
            "&amp;#x": "&#x",
            "&amp;#x&quot;/&gt;&lt;Data&amp;#x;": '&#x"/><Data&#x;',
        }
        for kind, declaration in DECLARATIONS.items():
            for written, text in texts.items():
                with self.subTest(declaration=kind, written=written):
                    self.assertEqual(self.code_of_goods(declaration, written), text)


if __name__ == "__main__":
    unittest.main()
