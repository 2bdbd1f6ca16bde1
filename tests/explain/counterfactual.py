"""Checks each reason by a counterfactual: what it names is changed, and it is gone.

counterfactual.py LIBRARY SCHEMA FORM [--each N] [--tills N] [--seed S] [--only REASON]

Exit code 0: each reason was met and is true. 1: one isn't, or was not met. 2: the run itself failed.
"""

import argparse
import collections
import json
import pathlib
import sys
import time

from changes import BEFORE_ROWS, CHANGES, EDGES, Case, Unchangeable, changed
from face import EXPLAIN, Counter
from facts import Broken, reasons_of
from hosts import make_host_till
from occasions import OCCASIONS, constructed
from runs import RUN, tell_failure

# Rules that take over what the one before had taken are taken out as well, so often.
TAKERS = 12


def cases_of(till, answers):
    """The decisions that refused rules, each with the till up to there. Gift choices stand in it as they were sent."""
    sent = [answer.call for answer in answers]
    for place, answer in enumerate(answers):
        if answer.explanation is None:
            continue
        for rule in answer.explanation["rules"]:
            met, has_given = set(), False
            for outcome in rule["outcomes"]:
                because = outcome["because"]
                # What a "DZ" rule lacks in its own pass it lacks in the pass of all again; changed, it takes it in the
                # first. And what it lacks behind a pass in which it gave something, it mostly took itself.
                is_new = because and because["reason"] not in met
                if is_new and (not has_given or because["takenBy"] or because["reason"] == "AlreadyOnLine"):
                    yield Case({**till, "calls": sent[:place + 1]}, answer, rule, outcome)
                has_given = has_given or because is None
                met.add(because and because["reason"])


def outcomes_of(work, answer):
    """What became of the case's rule in its pass; in the passes of its type, where it is about those."""
    told = answer.explanation
    if told is None:
        raise Broken("the changed call has no explanation", f"{answer.code} {answer.error}")
    kinds = {one["pass"]: one["kind"] for one in told["passes"]}
    found = [outcome for rule in told["rules"] if rule["billNo"] == work.number for outcome in rule["outcomes"]
             if (outcome["pass"] in work.passes if work.passes else kinds[outcome["pass"]] == work.because["need"])]
    if not found:
        raise Unchangeable("the rule is gone")
    return found


def is_there(work, outcome):
    """Whether the reason still stands where it stood. A rule that gives something now is refused by nothing any more."""
    because, now = work.because, outcome["because"]
    if now is None:
        return False
    names = ("slot", "goods", "row") if work.deciding else ("slot", "goods", "row", "tier", "unit")
    if work.line is not None:
        names = ("row",)
    if work.measured:
        names += ("have",)

    def is_same(decision):
        return decision["reason"] == because["reason"] and (work.line is None or work.line in decision["lines"]) and \
            all(decision[name] == because[name] for name in names)

    return is_same(now) if work.deciding else any(is_same(decision) for decision in [*outcome["looked"], now])


def has_taken_itself(work, outcome):
    """Whether the rule lacks now what it took itself, in a pass before."""
    others = [taker["billNo"] for taker in work.because["takenBy"] if taker["billNo"] != work.number]
    return bool(others) and work.case.primary == "DZ" and [taker["billNo"] for taker in outcome["because"]["takenBy"]] == [work.number]


class Trials:
    """Tries cases out on a counter."""

    def __init__(self, counter, reasons):
        self.counter, self.reasons = counter, reasons

    def outcomes(self, work):
        return outcomes_of(work, self.counter.play(work.till, EXPLAIN)[-1])

    def check(self, case):
        """Raises Broken where the reason does not go. @return whether its edge was tried as well."""
        work = changed(case)
        outcomes = self.outcomes(work)
        for _ in range(TAKERS):
            takers = self.new_takers(work, outcomes)
            if not takers:
                break
            work.drop_rules(takers)
            outcomes = self.outcomes(work)
        for outcome in outcomes:
            if is_there(work, outcome) and not has_taken_itself(work, outcome):
                raise Broken("a reason is not gone with what it names", f"{case}; it is now {outcome['because']}")
            self.check_further(case, outcome)
        return self.check_edge(case)

    def new_takers(self, work, outcomes):
        """The rules that take in its place what those before have taken, or what was added."""
        found = {taker["billNo"] for outcome in outcomes if is_there(work, outcome)
                 for decision in [*outcome["looked"], outcome["because"]]
                 if decision["reason"] == work.because["reason"] for taker in decision["takenBy"]}
        return [number for number in sorted(found) if number != work.number and work.loads(number)]

    def check_further(self, case, outcome):
        """Behind a filter that lets it pass the rule comes further than before, not to an earlier reason."""
        because = outcome["because"]
        if case.reason not in BEFORE_ROWS or because is None or because["need"] == "EndTime":
            return  # that a span of hours has no end is found behind its beginning
        if self.reasons.index(because["reason"]) <= self.reasons.index(case.reason):
            raise Broken("a rule comes less far than before", f"{case}; it is now {because}")

    def check_edge(self, case):
        """A little from the edge the reason is still there. @return whether there is an edge."""
        if case.reason not in EDGES or not isinstance(case.because["need"], (int, float)) or changes_sale(case):
            return False
        try:
            work = changed(case, EDGES[case.reason])
        except Unchangeable:
            return False
        outcomes = self.outcomes(work)
        if not any(decision and decision["reason"] == case.reason for outcome in outcomes
                   for decision in [*outcome["looked"], outcome["because"]]):
            raise Broken("a reason is gone before its edge", f"{case}; it is now {outcomes[0]['because']}")
        return True


def changes_sale(case):
    """Whether there is too little to lower a threshold to, so that the sale is changed and not the rule."""
    return case.reason in ("BelowMinimum", "BelowSetSize", "ArticleShort") and case.because["have"] < 1


class Search:
    """Looks for cases of each reason: in tills as they come, in those made for it, and in ones made by hand."""

    def __init__(self, options, counter, reasons):
        self.options, self.counter, self.reasons = options, counter, reasons
        self.trials = Trials(counter, reasons)
        self.checked, self.edges, self.skipped = collections.Counter(), collections.Counter(), collections.Counter()
        self.kinds = collections.defaultdict(collections.Counter)
        self.begin = time.monotonic()

    def wants(self, reason, kind):
        """Whether more of a reason are wanted; one that many types know, from each of them."""
        if self.options.only and reason != self.options.only:
            return False
        return self.checked[reason] < self.options.each or self.kinds[reason][kind] < 1 + self.options.each // 8

    def lacking(self):
        return [reason for reason in self.reasons if (not self.options.only or reason == self.options.only) and
                self.checked[reason] < self.options.each]

    def look(self, till, only=None):
        """Checks the wanted cases of a till. @return the first till that fails, and how."""
        for case in cases_of(till, self.counter.play(till, EXPLAIN)):
            if case.reason not in CHANGES or (only and case.reason != only) or not self.wants(case.reason, case.kind):
                continue
            try:
                edge = self.trials.check(case)
            except Unchangeable:
                self.skipped[case.reason] += 1
                continue
            except Broken as broken:
                return case.till, str(broken)
            self.checked[case.reason] += 1
            self.kinds[case.reason][case.kind] += 1
            self.edges[case.reason] += edge
        return None

    def run(self):
        for reason, till in constructed():
            if till and (failure := self.look(till, reason)):
                return failure
        first = self.options.seed * RUN
        for seed in range(first, first + self.options.tills):
            till = {**make_host_till(seed), "store": "free"}
            failure = self.look(till)
            for reason in self.lacking():
                for occasion in OCCASIONS.get(reason, ()):
                    made = occasion(till, seed)
                    failure = failure or (made and self.look(made, reason))
            if failure:
                return failure
            if not self.lacking():
                break
        return None

    def tell(self):
        for reason in self.reasons:
            if self.options.only in (None, reason):
                kinds = ", ".join(f"{kind} {number}" for kind, number in sorted(self.kinds[reason].items()))
                edges = f", {self.edges[reason]} at the edge" if reason in EDGES else ""
                print(f"  {reason}: {self.checked[reason]}{edges} ({kinds}); {self.skipped[reason]} left out")
        print(f"{sum(self.checked.values())} counterfactuals ({time.monotonic() - self.begin:.1f} s)")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("library", help="the library libqncorvane-host")
    parser.add_argument("schema", help="SQL script that makes the store's tables")
    parser.add_argument("form", help="JSON schema of the explanation")
    parser.add_argument("--each", type=int, default=5, help="cases of each reason (5)")
    parser.add_argument("--tills", type=int, default=400, help="tills that are looked through at most (400)")
    parser.add_argument("--seed", type=int, default=1, help="another number, other tills (1)")
    parser.add_argument("--only", metavar="REASON", help="one reason")
    options = parser.parse_args()
    schema = json.loads(pathlib.Path(options.form).read_text("utf-8"))
    reasons = [reason for reason in reasons_of(schema) if reason != "Unexplained"]
    if set(reasons) != set(CHANGES):
        raise ValueError(f"the reasons and the changes differ: {set(reasons) ^ set(CHANGES)}")
    counter = Counter(options.library, options.schema)
    try:
        search = Search(options, counter, reasons)
        failure = search.run()
        search.tell()
    finally:
        counter.leave()
    if failure:
        tell_failure(failure)
        return 1
    if search.lacking():
        print(f"not met often enough: {', '.join(search.lacking())}")
        return 1
    return 0


if __name__ == "__main__":
    sys.stdout.reconfigure(errors="backslashreplace")
    try:
        sys.exit(main())
    except (OSError, ValueError) as error:
        print(f"counterfactual: {error}", file=sys.stderr)
        sys.exit(2)
