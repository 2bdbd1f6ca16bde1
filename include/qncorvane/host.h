#ifndef QNCORVANE_HOST_H
#define QNCORVANE_HOST_H

/**
 * The promotion calculation engine behind a face that checks what it is given: the library `libqncorvane-host`.
 *
 * It is the engine of qncorvane.h, with the same answers to the same sales, for hosts that have several threads, want no
 * buffers of their own, or would rather be told of a mistake than find it on a receipt.
 *
 * Folder: a store's folder holds "config.ini", the rules in "rules/", the log "QnCorvane.txt" and, for SQLite, the
 * database file. The process's current directory is neither used nor changed. A relative file name in "config.ini"
 * counts from the folder.
 *
 * Threads: any thread may call at any time. Calls run one after the other, in the order in which they came, on one
 * thread that belongs to the engine.
 *
 * Time: each call takes a limit in milliseconds, 0 for none. What has not begun by then never begins; what has begun is
 * carried through behind the caller's back, and the calls after it wait for it as they wait for any. Both are answered
 * with QNC_TIMED_OUT, and its text says which of them it was.
 *
 * Answers: 0 (QNC_OK), or a code of `qnc_code`. With every other code `*error` is a text that says what is wrong, where
 * and what to do; with QNC_OK it is null. `error` may be null for a host that wants the code alone.
 *
 * Texts: in, zero-terminated UTF-8, the caller's own, not kept. A null text counts as empty. Out, zero-terminated UTF-8,
 * made for the caller, who gives each back by `qnc_free`. What a call has no text for is set to null.
 *
 * XML: a text that is cut off, isn't XML, isn't UTF-8, has another encoding in its declaration, a document type, an
 * attribute twice, more than 1000 attributes in an element or elements more than 200 deep is refused, with line and column;
 * so are values that can't be what they stand for, such as a date that isn't YYYY-MM-DD. With QNC_LENIENT the text is read
 * as the eight calls read it: as far as it goes.
 *
 * Fork: an engine belongs to the process that opened it. In a process forked from it every call with it is answered with
 * QNC_CLOSED; that process may open one of its own.
 *
 * No call ends the process, throws an exception, or writes anywhere but into what it was given. Calls from exit handlers
 * and from destructors of global objects are answered; with QNC_CLOSED where there is no engine any more.
 */

#include <stddef.h>

#include "qncorvane/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/** An open engine. */
/* NOLINTNEXTLINE(modernize-use-using): C */
typedef struct qnc_engine qnc_engine;

/** What a call answers. The numbers stay what they are. */
/* NOLINTNEXTLINE(modernize-use-using): C */
typedef enum qnc_code {
  QNC_OK = 0,
  QNC_BAD_ARGUMENT = 1,    /**< a call makes no sense so: no key, an unknown mode, no place for the answer */
  QNC_BAD_XML = 2,         /**< a text is no XML, or more than is read */
  QNC_BAD_VALUE = 3,       /**< XML, but a value in it is missing or can't be what it stands for */
  QNC_BAD_STORE = 4,       /**< the folder, its settings or its database: what qnc_check finds, too */
  QNC_ALREADY_OPEN = 5,    /**< this process has an engine open */
  QNC_CLOSED = 6,          /**< no engine: closed, of another process, or at the process's end */
  QNC_TIMED_OUT = 7,       /**< the time limit ended the wait */
  QNC_TOTAL_OVERFLOW = 8,  /**< mode "Gift": the choice costs more than the sale has reached */
  QNC_NUMBER_OVERFLOW = 9, /**< mode "Gift": more of an article was taken than is offered */
  QNC_REFUSED = 10,        /**< the engine could not calculate; the log may say more */
  QNC_NO_MEMORY = 11,      /**< memory was short; the next call works when there is some again */
  QNC_UNREADABLE = 12      /**< a file or folder of rules can't be read */
} qnc_code;

/** What a call is asked for beside its arguments; to be added up. */
enum qnc_flags {
  QNC_LENIENT = 1, /**< XML is read as far as it goes */
  QNC_JSON = 2,    /**< the result is JSON in place of XML; see qnc_calculate */
  QNC_REPLACE = 4, /**< qnc_load_rules: the rules of the folder, and no others */
  QNC_EXPLAIN = 8  /**< qnc_calculate: JSON that tells why, too; see docs/explanations.md */
};

/** @return the version, e.g. "1.3.0". A constant, not to be given back. */
QNCORVANE_API const char* qnc_version(void);

/** Gives a text back. Null is left alone. */
QNCORVANE_API void qnc_free(char* text);

/**
 * Opens the engine on a store's folder, without rules. One engine can be open in a process.
 *
 * Refused with QNC_BAD_STORE, and a text for the first thing that is wrong: a folder that isn't there, no "config.ini", an
 * unknown `DbType`, a kind without its driver (the text names Debian's package), a database that can't be opened, a database
 * file that is missing, empty or none, a missing table or column.
 *
 * @param folder the store's folder; a relative one counts from the current directory at this call.
 * @param engine out: the engine; null unless QNC_OK.
 * @param error  out: a text or null.
 */
QNCORVANE_API int qnc_open(const char* folder, qnc_engine** engine, char** error);

/**
 * Closes the engine: waits for the calls that came before, forgets rules and sales, closes the database. Whoever calls with
 * this engine afterwards, to close it again included, gets QNC_CLOSED.
 */
QNCORVANE_API int qnc_close(qnc_engine* engine, char** error);

/**
 * Loads one rule. One with the same `BillNo` is replaced. The type is the rule's `ProType`.
 *
 * @param xml   the rule's XML, with exactly one rule in it.
 * @param name  what errors call the text, e.g. the name of its file; null or empty is "rule".
 * @param flags 0 or QNC_LENIENT.
 */
QNCORVANE_API int qnc_load_rule(qnc_engine* engine, const char* xml, const char* name, unsigned flags,
                                unsigned limit_ms, char** error);

/**
 * Loads the rules of a folder: all files "*.xml" in it, each with one rule, in the order of their names by bytes. A file that
 * is refused does not keep the others out; the answer is then the code of the first refused one. With QNC_REPLACE the rules
 * that were loaded before are gone; nothing is changed then when a file is refused.
 *
 * @param folder a relative one counts from the store's folder; null or empty is "rules".
 * @param report out, unless null: JSON, also where files were refused:
 *               {"folder": "/shop/rules", "loaded": 1, "refused": 1, "files": [
 *                 {"file": "R01.xml", "billNo": "R01", "type": "PTXS", "loaded": true},
 *                 {"file": "R02.xml", "loaded": false, "error": "rules/R02.xml:3:12: ..."}]}
 *               With QNC_REPLACE and a refused file, `loaded` is 0 and false throughout.
 */
QNCORVANE_API int qnc_load_rules(qnc_engine* engine, const char* folder, unsigned flags, unsigned limit_ms,
                                 char** report, char** error);

/** Removes rules: all of them for "*", otherwise those with this `BillNo`, in any letter case (ASCII). */
QNCORVANE_API int qnc_clear_rules(qnc_engine* engine, const char* bill_no, unsigned limit_ms, char** error);

/**
 * Calculates one step of a sale.
 *
 * @param key    names the sale; the first call with a key creates it, and it lives until it is forgotten.
 * @param mode   "Single", "All", "Union", "Zh", "MzPromotion", "Gift", "Pay" or "Coupon".
 * @param xml    the sale XML, merged into what the engine holds of the sale.
 * @param flags  QNC_LENIENT, QNC_JSON, QNC_EXPLAIN.
 * @param result out: the result XML, byte for byte that of the eight calls; with QNC_JSON an object:
 *               - "sale": the result's `BillNo` and `OrgCode`, and its groups as arrays in the result's order ("Plu",
 *                 "ProResult", "Apportion", "ProGifts", "ProCoupons"; those that the mode's form has), with the same
 *                 names; an offer's articles are its array "Goods". Numbers are numbers, `IsVip` is 0 or 1, and
 *                 what is told of coupons stays text; each amount of money has its whole cents beside it, under its name and
 *                 "Cents".
 *               - "totals": "beforeCents", the amounts that were sent; "rules", by rule in the order of the discount
 *                 rows, "billNo", "type" and "cents"; "toPayCents"; and the same in currency units, "before", "money" of each
 *                 rule, "toPay".
 *               With QNC_EXPLAIN it is that object, QNC_JSON given or not, and in it "explanation": for every rule and pass
 *               of the mode what it gave or why it gave nothing, the way of each line's amount from discount to discount, and
 *               what would have to be added to get more. The form is that of docs/explanation.schema.json. A choice of
 *               gifts that is refused has an explanation, too, and nothing else in the object. Nothing is recorded
 *               without the flag, and the log is the same with it.
 */
QNCORVANE_API int qnc_calculate(qnc_engine* engine, const char* key, const char* mode, const char* xml, unsigned flags,
                                unsigned limit_ms, char** result, char** error);

/** Forgets the sale of `key` and gives its memory back; an unknown key is no error. */
QNCORVANE_API int qnc_forget_sale(qnc_engine* engine, const char* key, unsigned limit_ms, char** error);

/** Forgets all sales. */
QNCORVANE_API int qnc_forget_sales(qnc_engine* engine, unsigned limit_ms, char** error);

/**
 * Tells the engine's state.
 *
 * @param state out: JSON, {"version": "1.3.0", "folder": "/shop", "state": "Free", "rules": ["R01", "R02"], "sales": 3,
 *              "database": {"kind": "SQLITE", "open": true}}; rules in the order of calculation.
 */
QNCORVANE_API int qnc_state(qnc_engine* engine, unsigned limit_ms, char** state, char** error);

/**
 * Looks through a store's folder: settings, driver, database, tables, columns, and the rules in "rules/", without loading
 * anything. May be called with and without an open engine, for its folder or another.
 *
 * @param report out: JSON, also where something is wrong:
 *               {"folder": "/shop", "ok": false, "findings": [
 *                 {"severity": "error", "where": "config.ini", "what": "DbType 'SQLLITE' is no kind of database",
 *                  "mend": "write SQLITE, MYSQL, SQLSERVER, ORACLE or ACCESS"}]}
 *               `severity` is "error" or "warning"; `ok` is whether there is no error.
 * @return QNC_OK when there is no error; QNC_BAD_STORE, or the code of a refused rule, otherwise.
 */
QNCORVANE_API int qnc_check(const char* folder, unsigned limit_ms, char** report, char** error);

/**
 * Looks through a store's rules: header, filters, rows of their tables and how they go together, and all that qnc_check finds.
 * Loads and changes nothing. May be called with and without an open engine, for its folder or another.
 *
 * @param report out: JSON, also where something is found; docs/lint.md tells each finding:
 *               {"folder": "/shop", "errors": 1, "warnings": 0, "findings": [
 *                 {"severity": "error", "code": "unknown-price-kind", "file": "rules/R01.xml", "line": 3, "table":
 *                  "tProPrjDirectProAct", "key": "BillNo=R01 SerialNo=2", "billNo": "R01", "what": "DscType 'PCR' is no kind of
 *                  price", "mend": "write PRC"}]}
 *               `line` is 0 and `file`, `table`, `key`, `billNo` are "" where a finding has none.
 * @return QNC_OK when there is no error; QNC_BAD_STORE, or the code of a refused rule, otherwise.
 */
QNCORVANE_API int qnc_lint(const char* folder, unsigned limit_ms, char** report, char** error);

/**
 * The texts that go with explanations, in English and Chinese: JSON, docs/explanations.md tells its form. A constant, not to
 * be given back.
 */
QNCORVANE_API const char* qnc_texts(void);

#ifdef __cplusplus
}
#endif

#endif
