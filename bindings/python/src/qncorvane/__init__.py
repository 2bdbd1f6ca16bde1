"""The promotion calculation engine of a retail point of sale, for hosts in Python.

    from decimal import Decimal
    from qncorvane import Engine, Line, Mode, Sale

    with Engine("/srv/shop") as engine:
        engine.load_rules()
        sale = Sale(bill_no="S-1", org_code="01", lines=[
            Line(serial_no=1, plu_code="100101", price=Decimal("2.50"), plu_count=3, total=Decimal("7.50"))])
        print(engine.calculate("till-1/S-1", Mode.ALL, sale).totals.to_pay)

The engine itself is the library libqncorvane-host.so.1, which the dynamic linker finds; the environment variable
QNCORVANE_HOST_LIBRARY names another file.
"""

from ._engine import Engine, check, lint, version
from ._errors import (AlreadyOpen, BadArgument, BadStore, BadValue, BadXml, Closed, Code, LibraryMissing, NoMemory,
                      NumberOverflow, QncError, Refused, TimedOut, TotalOverflow, Unreadable)
from ._explanation import (Addition, Decision, Explained, Explanation, Gain, LineMoney, LineWaterfall, NearMiss, Outcome, Pass,
                           PassKind, Reason, RuleName, RuleOutcomes, Step, StepKind, Unit, What)
from ._reports import CheckReport, Database, Finding, LintFinding, LintReport, LoadReport, RuleFile, State
from ._result import Apportion, Discount, HeldCoupon, Result, ResultLine, RuleTotal, Totals
from ._sale import Coupon, Gift, Line, Member, Mode, Offer, OfferedArticle, Payment, Sale
from ._sentences import Sentences, texts

__all__ = [
    "Addition", "AlreadyOpen", "Apportion", "BadArgument", "BadStore", "BadValue", "BadXml", "CheckReport", "Closed",
    "Code", "Coupon", "Database", "Decision", "Discount", "Engine", "Explained", "Explanation", "Finding", "Gain", "Gift",
    "HeldCoupon", "LibraryMissing", "Line", "LineMoney", "LineWaterfall", "LintFinding", "LintReport", "LoadReport",
    "Member", "Mode", "NearMiss", "NoMemory", "NumberOverflow", "Offer", "OfferedArticle", "Outcome", "Pass", "PassKind",
    "Payment", "QncError", "Reason", "Refused", "Result", "ResultLine", "RuleFile", "RuleName", "RuleOutcomes",
    "RuleTotal", "Sale", "Sentences", "State", "Step", "StepKind", "TimedOut", "TotalOverflow", "Totals", "Unit",
    "Unreadable", "What", "check", "lint", "texts", "version",
]
