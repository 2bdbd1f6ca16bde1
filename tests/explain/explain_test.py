"""The checks of explanations, tested on themselves: each finds an explanation that was altered so that it is wrong.

explain_test.py LIBRARY SCHEMA FORM
"""

import collections
import copy
import json
import sys
import types
import unittest

import complete
import counterfactual
import near
from face import EXPLAIN, Counter
from facts import Broken, reasons_of
from form import checker
from runs import host_till

LIBRARY, SCHEMA, FORM = sys.argv[1:4]
OPTIONS = types.SimpleNamespace(form=FORM)


def outcomes(told, kind):
    """The outcomes of a kind, each with its rule."""
    return [(rule, outcome) for rule in told["rules"] for outcome in rule["outcomes"] if outcome["outcome"] == kind]


def steps(told):
    return [step for line in told["lines"] for step in line["steps"] if step["cents"]]


class Altering:
    """A counter whose explanations are altered on their way. What else it answers stays."""

    def __init__(self, counter, alter):
        self.counter, self.alter, self.altered = counter, alter, False

    def play(self, till, flags, upto=None):
        answers = self.counter.play(till, flags, upto)
        for answer in answers:
            if answer.explanation and not self.altered:
                self.altered = bool(self.alter(answer.explanation, answer))
        return answers


class Found(unittest.TestCase):
    """Altered explanations are found."""

    @classmethod
    def setUpClass(cls):
        cls.counter = Counter(LIBRARY, SCHEMA)
        cls.tills = [host_till(seed) for seed in range(1, 40)]

    @classmethod
    def tearDownClass(cls):
        cls.counter.leave()

    def assert_found(self, alter, what, check=None):
        """Some till shows an alteration, and then the check names it so."""
        for till in self.tills:
            altering = Altering(self.counter, alter)
            try:
                (check or complete.Check(OPTIONS)).till(altering, till, collections.Counter())
            except Broken as broken:
                self.assertTrue(altering.altered, f"found without an alteration: {broken}")
                self.assertIn(what, broken.what)
                return
            self.assertFalse(altering.altered, "an alteration is not found")
        self.fail("nothing to alter")

    def test_nothing_is_found_where_nothing_is_altered(self):
        for till in self.tills[:10]:
            complete.Check(OPTIONS).till(self.counter, till, collections.Counter())

    def test_an_outcome_that_is_dropped(self):
        self.assert_found(lambda told, _: told["rules"] and told["rules"][0]["outcomes"].pop(), "one outcome for each pass")

    def test_an_outcome_that_is_doubled(self):
        def alter(told, _):
            if told["rules"]:
                told["rules"][0]["outcomes"].append(told["rules"][0]["outcomes"][0])
            return told["rules"]
        self.assert_found(alter, "one outcome for each pass")

    def test_a_rule_that_is_dropped(self):
        self.assert_found(lambda told, _: told["rules"] and told["rules"].pop(), "not those that are loaded")

    def test_a_pass_that_is_dropped(self):
        self.assert_found(lambda told, _: told["passes"].pop(), "passes")

    def test_an_outcome_that_is_unexplained(self):
        def alter(told, _):
            for _, outcome in outcomes(told, "refused"):
                outcome["because"]["reason"] = "Unexplained"
                return True
            return False
        self.assert_found(alter, "unexplained")

    def test_a_reason_that_was_not_met(self):
        def alter(told, _):
            for _, outcome in outcomes(told, "refused"):
                outcome["because"]["reason"] = "LimitedByMoney"
                return True
            return False
        self.assert_found(alter, "none of those that were met")

    def test_a_refusal_told_as_applied(self):
        def alter(told, _):
            for _, outcome in outcomes(told, "refused"):
                outcome.update(outcome="applied", because=None)
                return True
            return False
        self.assert_found(alter, "applied is not what gave something")

    def test_a_gift_told_as_refused(self):
        def alter(told, _):
            for _, outcome in outcomes(told, "applied"):
                because = {"reason": "NotNamed", "lines": [], "goods": "", "slot": "", "row": 0, "tier": 0, "unit": "",
                           "have": None, "need": None, "takenBy": []}
                outcome.update(outcome="refused", because=because, looked=[because])
                return True
            return False
        self.assert_found(alter, "applied is not what gave something")

    def test_cents_of_an_outcome_that_are_off_by_one(self):
        def alter(told, _):
            for _, outcome in outcomes(told, "applied"):
                if outcome["lines"]:
                    outcome["lines"][0]["cents"] += 1
                    outcome["cents"] += 1
                    return True
            return False
        self.assert_found(alter, "outcome and steps differ")

    def test_a_sum_of_an_outcome_that_is_off_by_one(self):
        def alter(told, _):
            for _, outcome in outcomes(told, "applied"):
                outcome["cents"] += 1
                return True
            return False
        self.assert_found(alter, "an outcome's lines don't sum up")

    def test_cents_of_a_step_that_are_off_by_one(self):
        def alter(told, _):
            for step in steps(told):
                step["cents"] += 1
                return True
            return False
        self.assert_found(alter, "a step leaves something else")

    def test_a_step_that_is_dropped(self):
        def alter(told, _):
            for line in told["lines"]:
                if any(step["cents"] for step in line["steps"][-1:]):
                    line["leftCents"] += line["steps"].pop()["cents"]
                    line["left"] = line["leftCents"] / 100
                    return True
            return False
        self.assert_found(alter, "differ")

    def test_a_line_that_begins_with_another_amount(self):
        def alter(told, _):
            for line in told["lines"]:
                line["beforeCents"] += 1
                line["leftCents"] += 1
                line["before"], line["left"] = line["beforeCents"] / 100, line["leftCents"] / 100
                for step in line["steps"]:
                    step["leftCents"] += 1
                return True
            return False
        self.assert_found(alter, "begin with what was sent")

    def test_a_line_that_leaves_another_amount(self):
        def alter(told, _):
            for line in told["lines"]:
                line["leftCents"] -= 1
                return True
            return False
        self.assert_found(alter, "a line leaves something else")

    def test_an_offer_too_many(self):
        def alter(told, _):
            for _, outcome in outcomes(told, "applied"):
                if outcome["offers"] and told["mode"] == "MzPromotion":
                    outcome["offers"] += 1
                    return True
            return False
        self.assert_found(alter, "offers differ")

    def test_a_member_that_the_form_does_not_know(self):
        def alter(told, _):
            told["more"] = 1
            return True
        self.assert_found(alter, "not in its form")

    def test_a_number_in_place_of_a_text(self):
        def alter(told, _):
            for rule in told["rules"]:
                rule["billNo"] = 7
                return True
            return False
        self.assert_found(alter, "not in its form")

    def test_another_result_with_the_flag(self):
        class Other(Altering):
            def play(self, till, flags, upto=None):
                answers = self.counter.play(till, flags, upto)
                for answer in answers:
                    if flags == EXPLAIN and answer.text:
                        answer.text = answer.text.replace('"beforeCents":', '"beforeCents":1', 1)
                        self.altered = True
                return answers
        other = Other(self.counter, None)
        with self.assertRaisesRegex(Broken, "another result"):
            complete.Check(OPTIONS).till(other, self.tills[0], collections.Counter())

    def test_another_log_with_the_flag(self):
        class Other(Altering):
            def play(self, till, flags, upto=None):
                answers = self.counter.play(till, flags, upto)
                for answer in answers:
                    answer.log = list(answer.log) + ([b"more"] if flags == EXPLAIN else [])
                return answers
        with self.assertRaisesRegex(Broken, "logs otherwise"):
            complete.Check(OPTIONS).till(Other(self.counter, None), self.tills[0], collections.Counter())

    # Near misses

    def test_a_near_miss_that_brings_a_cent_more(self):
        def alter(told, _):
            for one in told["nearMisses"]:
                if one["brings"]:
                    one["brings"]["cents"] += 1
                    return True
            return False
        self.assert_found(alter, "brings something else", near.Check(OPTIONS))

    def test_a_near_miss_of_a_piece_too_many(self):
        def alter(told, _):
            for one in told["nearMisses"]:
                is_one_step = len(one["add"]) == 1 and one["need"] is not None and one["reason"] == "ArticleShort"
                if one["brings"] and is_one_step and one["add"][0]["what"] == "goods":
                    one["add"][0]["count"] += 1
                    return True
            return False
        self.assert_found(alter, "less would do", near.Check(OPTIONS))

    def test_a_missing_number_that_does_not_fit(self):
        def alter(told, _):
            for one in told["nearMisses"]:
                if one["brings"] and one["need"] is not None:
                    one["missing"] += 1
                    return True
            return False
        self.assert_found(alter, "what is missing", near.Check(OPTIONS))


class Counterfactuals(unittest.TestCase):
    """A reason that is not the true one does not go with what it names."""

    @classmethod
    def setUpClass(cls):
        cls.counter = Counter(LIBRARY, SCHEMA)
        with open(FORM, encoding="utf-8") as file:
            cls.reasons = reasons_of(json.load(file))

    @classmethod
    def tearDownClass(cls):
        cls.counter.leave()

    def case_of(self, reason, altered=lambda because: None):
        """A case of a reason that the counterfactual takes, with its decision altered."""
        for seed in range(1, 200):
            till = {**host_till(seed), "store": "free"}
            for case in counterfactual.cases_of(till, self.counter.play(till, EXPLAIN)):
                if case.reason == reason:
                    case.because = {**case.because}
                    altered(case.because)
                    return case
        return self.fail(f"no {reason}")

    def check(self, case):
        return counterfactual.Trials(self.counter, self.reasons).check(case)

    def test_true_reasons_go(self):
        for reason in ("MemberMissing", "PaymentMissing", "ArticleShort"):
            self.check(self.case_of(reason))

    def test_a_threshold_that_is_told_too_low(self):
        def alter(because):
            because["have"] += 1
        with self.assertRaisesRegex(Broken, "not gone"):
            self.check(self.case_of("ConditionShort", alter))

    def test_a_kind_of_sale_that_is_not_the_one(self):
        with self.assertRaisesRegex(Broken, "not gone"):
            self.check(self.case_of("OtherKindOfSale", lambda because: because.update(need=because["have"])))


class Form(unittest.TestCase):
    """The quick check of the form."""

    SCHEMA = {"type": "object", "required": ["a"], "additionalProperties": False, "properties": {
        "a": {"type": "integer", "minimum": 1}, "b": {"oneOf": [{"type": "null"}, {"$ref": "#/definitions/word"}]},
        "c": {"type": "array", "items": {"enum": ["x", "y"]}}}, "definitions": {"word": {"type": "string"}}}

    def test_it_agrees_with_the_library_for_schemas(self):
        import jsonschema  # pylint: disable=import-outside-toplevel
        check, validator = checker(copy.deepcopy(self.SCHEMA)), jsonschema.Draft7Validator(self.SCHEMA)
        for value in ({"a": 1}, {"a": 0}, {"a": "1"}, {"a": True}, {}, [], {"a": 1, "b": None}, {"a": 1, "b": "w"},
                      {"a": 1, "b": 2}, {"a": 1, "c": ["x"]}, {"a": 1, "c": ["z"]}, {"a": 1, "d": 1}):
            self.assertEqual(check(value) is None, validator.is_valid(value), value)

    def test_a_word_that_it_does_not_know_is_refused(self):
        with self.assertRaises(ValueError):
            checker({"type": "string", "pattern": "x"})

if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
