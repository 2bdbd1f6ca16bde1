"""What the engine tells of itself, of rules that were loaded and of stores."""

from __future__ import annotations

import dataclasses
import json
from collections.abc import Sequence


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class RuleFile:
    """What became of a file with a rule.

    Attributes:
        file: its name.
        loaded: whether the rule is in force now.
        bill_no: the rule's number, where it could be read.
        type: the rule's type, where it could be read.
        error: why it was refused; None when it wasn't.
    """

    file: str
    loaded: bool
    bill_no: str | None = None
    type: str | None = None
    error: str | None = None


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class LoadReport:
    """What became of a folder's rules.

    Attributes:
        folder: the folder.
        loaded: how many are in force now.
        refused: how many files were refused.
        files: each file, in the order of loading.
    """

    folder: str
    loaded: int
    refused: int
    files: Sequence[RuleFile]

    @staticmethod
    def from_json(text: str) -> LoadReport:
        """Reads the report that the engine makes."""
        report = json.loads(text)
        files = tuple(RuleFile(file=file["file"], loaded=file["loaded"], bill_no=file.get("billNo"), type=file.get("type"),
                               error=file.get("error")) for file in report["files"])
        return LoadReport(folder=report["folder"], loaded=report["loaded"], refused=report["refused"], files=files)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Database:
    """The store's database.

    Attributes:
        kind: the settings' `DbType`.
        open: whether a connection stands.
    """

    kind: str
    open: bool


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class State:
    """The engine's state.

    Attributes:
        version: the library's version.
        folder: the store's folder.
        state: the engine's word for what it does, "Free" between two calls.
        rules: the numbers of the rules, in the order of calculation.
        sales: how many sales it holds.
        database: the database.
    """

    version: str
    folder: str
    state: str
    rules: Sequence[str]
    sales: int
    database: Database

    @staticmethod
    def from_json(text: str) -> State:
        """Reads the state that the engine tells."""
        state = json.loads(text)
        database = Database(kind=state["database"]["kind"], open=state["database"]["open"])
        return State(version=state["version"], folder=state["folder"], state=state["state"], rules=tuple(state["rules"]),
                     sales=state["sales"], database=database)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class Finding:
    """Something that is wrong with a store.

    Attributes:
        severity: "error" or "warning".
        where: the file, the table, the column.
        what: what is wrong.
        mend: what to do.
    """

    severity: str
    where: str
    what: str
    mend: str


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class CheckReport:
    """What a look through a store's folder has found.

    Attributes:
        folder: the folder.
        ok: whether there is no error; warnings don't count.
        findings: what is wrong.
    """

    folder: str
    ok: bool
    findings: Sequence[Finding]

    @staticmethod
    def from_json(text: str) -> CheckReport:
        """Reads the report that the engine makes."""
        report = json.loads(text)
        findings = tuple(Finding(severity=finding["severity"], where=finding["where"], what=finding["what"],
                                 mend=finding.get("mend", "")) for finding in report["findings"])
        return CheckReport(folder=report["folder"], ok=report["ok"], findings=findings)


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class LintFinding:
    """Something about a store's rules that is wrong, or that hardly is what was meant.

    Attributes:
        severity: "error" or "warning".
        code: the kind of finding, such as "unknown-price-kind".
        file: the file, or "".
        line: its line; 0 for none.
        table: the table, or "".
        key: the row of the table, such as "BillNo=R01 SerialNo=2", or "".
        bill_no: the rule, or "".
        what: what is wrong.
        mend: what to do.
    """

    severity: str
    code: str
    file: str
    line: int
    table: str
    key: str
    bill_no: str
    what: str
    mend: str


@dataclasses.dataclass(frozen=True, slots=True, kw_only=True)
class LintReport:
    """What a look through a store's rules has found.

    Attributes:
        folder: the folder.
        errors: how many errors.
        warnings: how many warnings.
        findings: what was found.
    """

    folder: str
    errors: int
    warnings: int
    findings: Sequence[LintFinding]

    @staticmethod
    def from_json(text: str) -> LintReport:
        """Reads the report that the engine makes."""
        report = json.loads(text)
        findings = tuple(LintFinding(
            severity=finding["severity"], code=finding["code"], file=finding["file"], line=finding["line"],
            table=finding["table"], key=finding["key"], bill_no=finding["billNo"], what=finding["what"],
            mend=finding["mend"]) for finding in report["findings"])
        return LintReport(folder=report["folder"], errors=report["errors"], warnings=report["warnings"], findings=findings)
