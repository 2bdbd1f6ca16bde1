"""Counts what the tills reached: which types gave something, which modes were called, what was answered."""

import collections
import json
import re

TYPES = ("PTXS PTPL PTOS ZHZY ZHGD ZHTJ ZHZX MZMJ MZDP MZZM MZZP MZHG MZZQ MZZF MZYQ").split()
ROW = re.compile(r"<Data\b[^<>]*\bDisMoney=\"(-?[\d.]+)\"[^<>]*\bProType=\"([^\"]*)\"")
OFFER = re.compile(r"<ProGift ProBillNo=\"(MZ..)")
XML = re.compile(r"<.*", re.DOTALL)


class Stats:
    """The counts of a run."""

    def __init__(self):
        self.tills = 0
        self.given = collections.Counter()
        self.modes = collections.Counter()
        self.calls = collections.Counter()
        self.answers = collections.Counter()
        self.entries = collections.Counter()

    def add(self, till, line):
        """Counts one till with the answers of one side."""
        self.tills += 1
        answers = json.loads(line)
        for call, answer in zip(till["calls"], answers):
            self.add_answer(call, answer)
        if answers and isinstance(answers[-1], str):
            self.answers[answers[-1]] += 1

    def add_answer(self, call, answer):
        self.calls[call[0]] += 1
        mode = "Gift" if call[0] == "Gift" else call[2] if call[0] == "CalcPromotion" else None
        if mode is not None:
            self.modes[mode] += 1
        if isinstance(answer, str):
            return
        code, msg, out, log = answer
        self.answers[f"{code} {XML.sub('<...', msg)}"] += 1
        self.entries.update(log)
        for kind in self.kinds(out):
            self.given[kind] += 1

    @staticmethod
    def kinds(out):
        """The types that gave something in a result."""
        found = {kind for money, kind in ROW.findall(out) if float(money) != 0}
        return found | set(OFFER.findall(out))

    def text(self):
        """The counts as a text."""
        lines = [f"{self.tills} tills"]
        lines += self.table("results in which a type gave something", {kind: self.given[kind] for kind in TYPES})
        lines += self.table("calls", self.calls)
        lines += self.table("modes", self.modes)
        lines += self.table("answers", self.answers)
        lines.append(f"different log entries: {len(self.entries)}")
        return "\n".join(lines)

    @staticmethod
    def table(title, counts):
        """A title and its counts, the largest first; the rare ones only as a number."""
        ranked = sorted(counts.items(), key=lambda pair: -pair[1])
        rest = sum(count for _, count in ranked[30:])
        lines = [f"{title}:"] + [f"  {count:8} {name}" for name, count in ranked[:30]]
        return lines + ([f"  {rest:8} (others)"] if rest else [])
