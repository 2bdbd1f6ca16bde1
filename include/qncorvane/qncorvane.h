#ifndef QNCORVANE_H
#define QNCORVANE_H

/**
 * The promotion calculation engine, as a host sees it: eight plain C calls.
 *
 * Texts: every text is zero-terminated UTF-8. Texts that go in belong to the caller and are not kept. Buffers that come
 * out belong to the caller, are never checked for length and must be large enough; a null buffer is left alone, a null
 * text in counts as the empty text. How large: with each call below, and docs/host-guide.md for results. In the sale
 * and result XML money is in currency units, with a point as the decimal sign whatever the process's locale is.
 *
 * Files: the engine reads "config.ini" and writes the log "QnCorvane.txt" in the process's current directory.
 *
 * Threads: the engine has no locks. Calls must not overlap, not even for different sales, and must all come from one
 * thread: the database connection belongs to the thread that opened it. No call lets an exception out: for want of
 * memory it answers -1. All of them may be called from an atexit handler or a global destructor; they work or answer
 * -1 then.
 *
 * Time: a silent server or a lock in the database costs a call about two timeouts at most, which "config.ini" sets
 * (ConnectTimeout and ReadTimeout, 3 seconds each unless told). The rows that were not read by then are missing in that
 * call; the next one tries anew.
 *
 * Order: BeginInitPro, InitPromotion for each rule, FinishInitPro; then CalcPromotion for each step of a sale, and
 * DeleteSaleSetByKey at the sale's end.
 */

#include "qncorvane/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Starts loading: takes the state from "Free" to "Init" and opens the database of "config.ini".
 *
 * @return 0, or -1 when the state is not "Free" (nothing happens) or the database can't be opened. In the second case
 *         the state stays "Init" and every call that needs "Free" is refused until FinishInitPro.
 */
QNCORVANE_API int BeginInitPro(void);

/**
 * Loads one rule. Runs in any state. A rule with the same `BillNo` (exact, case included) is replaced.
 *
 * @param type the rule's type word: "PTXS", "PTPL", "PTOS", "ZHZY", "ZHGD", "ZHTJ", "ZHZX", "MZMJ", "MZDP", "MZZM",
 *             "MZZP", "MZHG", "MZZF" or "MZYQ"; a rule that gives coupons ("MZZQ" in its XML) is loaded as "MZYQ".
 * @param xml  the rule's XML. A text that doesn't parse loads an empty rule, which never applies.
 * @param msg  out: "sucess", or "pro initialize failed" followed by the whole of `xml`: give room for the length of
 *             `xml` and 22 bytes.
 * @return 0, or -1 for an unknown type or for want of memory: nothing is loaded then, and nothing replaced.
 */
QNCORVANE_API int InitPromotion(const char* type, const char* xml, char* msg);

/** Ends loading: the state becomes "Free", whatever it was. @return 0. */
QNCORVANE_API int FinishInitPro(void);

/**
 * Removes rules: all of them for "*", otherwise those with this `BillNo`, in any letter case (ASCII). Needs "Free".
 *
 * @param msg    out: "sucess" (also when nothing matched), the state text of the refusing state, or "clear pro failed".
 *               At least 17 bytes.
 * @param billNo the rule's number, or "*".
 * @return 0 or -1.
 */
QNCORVANE_API int ClearPromotion(char* msg, const char* billNo);

/**
 * Calculates one step of a sale. Needs "Free".
 *
 * @param key  names the sale; the first call with a key creates it, and it lives until it is deleted.
 * @param mode "Single" (one scanned line), "All", "Union" or "Zh" (line promotions), "MzPromotion" (full-amount
 *             promotions), "Gift" (the cashier's gift choice), "Pay" (payments are known) or "Coupon" (coupons are
 *             used). Exactly so: any other word reads the sale and answers -1, with "sucess" in `msg`.
 * @param xml  the sale XML, merged into what the engine holds of the sale; see docs/xml.md.
 * @param out  out: the result XML, whose size docs/host-guide.md tells how to reckon. Left alone when the call fails.
 * @param msg  out: "sucess", or what went wrong. At least 25 bytes.
 * @return 0; -1 on failure; in mode "Gift" also -2 ("total overflow") and -3 ("number overflow").
 */
QNCORVANE_API int CalcPromotion(const char* key, const char* mode, const char* xml, char* out, char* msg);

/**
 * Forgets the sale of `key` and gives its memory back; an unknown key is no error. Runs in any state.
 *
 * @return 0, or -1 after an internal error.
 */
QNCORVANE_API int DeleteSaleSetByKey(const char* key);

/**
 * Destroys all sales, for hosts that serve many tills. Needs "Free".
 *
 * @param msg out: "sucess", the state text of the refusing state, or "clear sale failed". At least 18 bytes.
 * @return 0 or -1.
 */
QNCORVANE_API int ClearSaleSetForNet(char* msg);

/** Copies the state word ("Free", "Init", "Clear" or "Using") into `buffer`, of at least 6 bytes. @return `buffer`. */
QNCORVANE_API char* GetState(char* buffer);

#ifdef __cplusplus
}
#endif

#endif
