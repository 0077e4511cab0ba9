/*
 * libkez: battery charge and discharge forecasts for phones.
 *
 * The host creates one instance with kez_init(), reports the phone's status
 * every few minutes with kez_addStatusValue() (or one log line with
 * kez_addStatusValues()), asks for forecasts whenever it wants, and frees the
 * instance with kez_stop(). An instance saves nothing: its learned history
 * dies with it. The adaptive forecaster (below) can keep its reports in a
 * journal file and pick them up again after a restart (kez_adaptive_open).
 *
 * The host's side of the contract: report at least every 10 minutes (every
 * 5 is a good choice), also when nothing changed. A 10-minute step without a
 * report is a gap, and a forecast of a day learns only from past moments that
 * were followed by a gap-free day.
 *
 * Forecast step k (from 0) is the state (k + 1) x 10 minutes after the last
 * reported sample. Every call runs on the caller's thread; an instance must
 * not be used by two threads at once, separate instances share nothing.
 * No function prints anything, and no C++ exception leaves the library.
 */
#ifndef KEZ_KEZ_H_
#define KEZ_KEZ_H_

#include <stdint.h>

#include "kez/export.h"

#ifdef __cplusplus
extern "C" {
#endif

/* One forecast step. */
typedef struct stMobilePowerPredictionData {
  double level;    /* battery level as a fraction, 0.0 to 1.0 */
  double charging; /* chance that the phone is charging, 0.0 to 1.0 */
  double distance; /* element 0 only: (100 + sum of the neighbour distances)
                      / (neighbours + 1); exactly 100.0 when no similar past
                      moment was found and the forecast is an extrapolation
                      of the running charge and discharge rates */
} stMobilePowerPredictionData;

/* Opaque handle of an instance. */
typedef void* kez_handle;

/* Writes the version text "1.04.21" into `buffer` (all `size` bytes
 * zero-filled first, the text cut to size - 1 characters) and returns its
 * full length, 7. A null buffer or a size of 0 or less writes nothing. */
KEZ_EXPORT int kez_get_version(char* buffer, int size);

/* Creates an instance with the built-in default model and an empty memory. */
KEZ_EXPORT kez_handle kez_init(void);

/* Reports one status sample. `timeMs` is Unix time in milliseconds,
 * `levelPercent` 0 to 100, `charging` 1.0 or 0.0. aux1..aux3 are passed on as
 * they are; countA becomes log10(countA) and countB1 + countB2 becomes
 * log100(sum), each 0 when the value is 1.0 or less. Nothing is validated.
 * Returns 1, or 0 for a null handle. */
KEZ_EXPORT int kez_addStatusValue(kez_handle handle, uint64_t timeMs,
                                  float levelPercent, float charging,
                                  float aux1, float aux2, float aux3,
                                  double countA, double countB1,
                                  double countB2);

/* Reports one status sample as a comma-separated log line: time in ms in
 * column 0, level % in 2, charging in 3, countB1/countB2 in 19/20,
 * aux1..aux3 in 24..26, countA in 29 (a line has at least 30 columns;
 * missing ones read as 0). Splitting stops early when a field equals all
 * the text after it, so a line ending in two equal fields ("...,5,5") loses
 * both. Does nothing for a null handle or a null line. */
KEZ_EXPORT void kez_addStatusValues(kez_handle handle, const char* line);

/* Forecasts `count` steps into `out`, which has room for `count` records;
 * element 0 carries the distance.
 *   kez_predict:                      free forecast;
 *   kez_predict_without_charging:     not charged during the next day;
 *   kez_predict_at_charging_starting: plugged in now, for the next day.
 * Return 1 when done, -1 for a null handle (out untouched). An absurd count
 * whose working memory cannot be allocated, or a null `out` with
 * count >= 1, returns 0 and leaves out untouched. A count below 1 writes
 * nothing into out. A forecast changes nothing the instance has learned. */
KEZ_EXPORT int kez_predict(kez_handle handle, int count,
                           stMobilePowerPredictionData* out);
KEZ_EXPORT int kez_predict_without_charging(kez_handle handle, int count,
                                            stMobilePowerPredictionData* out);
KEZ_EXPORT int kez_predict_at_charging_starting(
    kez_handle handle, int count, stMobilePowerPredictionData* out);

/* Destroys the instance. A null handle is ignored. */
KEZ_EXPORT void kez_stop(kez_handle handle);

/* ---- Answers derived from a forecast (not part of the version 1.04.21
 * interface of the app; shared by the Java API and the tools). ---- */

enum {
  KEZ_QUERY_LEVEL_AT_OR_BELOW = 0, /* level <= threshold (fraction) */
  KEZ_QUERY_LEVEL_AT_OR_ABOVE = 1, /* level >= threshold (fraction) */
  KEZ_QUERY_CHARGING_AT_OR_ABOVE = 2 /* charging chance >= threshold */
};

/* Returns the first step index k (0 .. count-1) of `records` that meets
 * `query` with `threshold`, or -1 when none does. Step k is (k + 1) x 10
 * minutes after the last sample. */
KEZ_EXPORT int kez_forecast_find(const stMobilePowerPredictionData* records,
                                 int count, int query, double threshold);

/* Runs the neighbour search that a forecast of `count` steps would run and
 * returns how many similar past moments it found (0: the forecast is an
 * extrapolation). Changes nothing the instance has learned. -1 for a null
 * handle. Meant for tools that explain a forecast. */
KEZ_EXPORT int kez_similar_moments(kez_handle handle, int count);


/* ---- The adaptive forecaster ----
 *
 * A forecaster beside one instance that learns, for this user and per
 * horizon, how far to trust each way of forecasting: the instance's own
 * forecast, persistence, the running-rate extrapolation, the same hours
 * yesterday and last week, the user's charging habit (chance of charging)
 * and charge curve ("plugged in now"). Every whole hour of reports it
 * records what each method forecast 1, 2, 4, 8, 12 and 24 hours ahead,
 * scores those forecasts once their outcomes are reported, and weighs the
 * methods by their recent errors (before it has scored enough, by errors
 * tuned offline on simulated users). A forecast uses nothing reported after
 * it; the same reports always give the same forecasts. About 58 KB more
 * than an instance; reports allocate nothing of their own. */

/* Opaque handle of an adaptive forecaster. */
typedef struct kez_adaptive kez_adaptive;

enum {
  KEZ_VARIANT_FREE = 0,        /* the free forecast */
  KEZ_VARIANT_NOT_CHARGED = 1, /* not charged during the next day */
  KEZ_VARIANT_PLUGGED_IN = 2   /* plugged in now, for the next day */
};

/* Creates an adaptive forecaster with its own instance (built-in model,
 * empty memory). NULL when out of memory. */
KEZ_EXPORT kez_adaptive* kez_adaptive_init(void);

/* Reports one status sample, with the values and meaning of
 * kez_addStatusValue, and feeds it to the instance inside. Returns 1 when
 * taken; 0 when refused: a value that is not finite, or a sample up to an
 * hour older than the last one (a sample more than an hour older is taken
 * as the clock jumping back: the recent history is forgotten, what was
 * learned about the methods is kept); -1 for a null handle. */
KEZ_EXPORT int kez_adaptive_report(kez_adaptive* a, uint64_t timeMs,
                                   float levelPercent, float charging,
                                   float aux1, float aux2, float aux3,
                                   double countA, double countB1,
                                   double countB2);

/* Reports one status sample given as a line of the host's status log (the
 * line of kez_addStatusValues), through kez_adaptive_report. Returns as
 * kez_adaptive_report; 0 for a null line. */
KEZ_EXPORT int kez_adaptive_report_line(kez_adaptive* a, const char* line);

/* The adaptive forecast of `variant` (KEZ_VARIANT_*): `count` steps into
 * `out`, step k (k + 1) x 10 minutes after the last report, as for
 * kez_predict; element 0's distance is the instance's. Before the first
 * report it is the instance's forecast. Returns 1 when done, 0 when nothing
 * was done (an unknown variant, a null `out` with count >= 1, no memory),
 * -1 for a null handle. A count below 1 writes nothing. */
KEZ_EXPORT int kez_adaptive_predict(kez_adaptive* a, int variant, int count,
                                    stMobilePowerPredictionData* out);

/* The instance's own forecast of `variant`, exactly as kez_predict,
 * kez_predict_without_charging and kez_predict_at_charging_starting give it
 * for the same reports. Returns as kez_adaptive_predict. */
KEZ_EXPORT int kez_adaptive_predict_raw(kez_adaptive* a, int variant,
                                        int count,
                                        stMobilePowerPredictionData* out);

/* Number of methods the adaptive forecaster knows (the indices of
 * kez_adaptive_weights). */
KEZ_EXPORT int kez_adaptive_method_count(void);

/* Writes the name of method `method` ("instance", "persistence",
 * "running_rates", "yesterday", "last_week", "charging_habit",
 * "charge_curve") into `buffer` like kez_get_version and returns its full
 * length; -1 for an unknown method. */
KEZ_EXPORT int kez_adaptive_method_name(int method, char* buffer, int size);

/* The weights with which the forecast of `variant` made now would combine
 * the methods at step `step`: `what` 0 for the level, 1 for the chance of
 * charging (free forecast only). Writes min(count, method count) weights
 * (each 0 to 1, together 1; 0 for a method not used) into `weights` and
 * returns how many; 0 for an unknown variant or `what`, -1 for a null
 * handle. */
KEZ_EXPORT int kez_adaptive_weights(kez_adaptive* a, int variant, int what,
                                    int step, double* weights, int count);

/* The weights of kez_adaptive_weights for steps 0 .. steps - 1 at once,
 * step-major: method m of step k in weights[k * kez_adaptive_method_count()
 * + m]; `weights` holds that many times `steps` values. Returns 1 when
 * written, 0 for an unknown variant or `what`, a null `weights` or steps
 * below 1, -1 for a null handle. */
KEZ_EXPORT int kez_adaptive_weight_steps(kez_adaptive* a, int variant,
                                         int what, int steps,
                                         double* weights);

/* How many forecasts of `variant` have been scored at 1 hour so far (until
 * a few dozen, the offline prior weighs more than the user's own record).
 * -1 for a null handle, 0 for an unknown variant. */
KEZ_EXPORT long kez_adaptive_scored(kez_adaptive* a, int variant);

/* Destroys the adaptive forecaster and its instance, after syncing and
 * closing its journal when it has one (reports still held in memory because
 * of a full disk are lost then). NULL is ignored. */
KEZ_EXPORT void kez_adaptive_stop(kez_adaptive* a);

/* ---- The history journal ----
 *
 * An adaptive forecaster opened with kez_adaptive_open keeps every report
 * it takes in a file, the journal, so that after a restart of the process
 * (an app stopped by the system, a reboot) opening it with the same file
 * replays the reports and it forecasts bit-identically to a forecaster that
 * never stopped. The file is a status log the offline tools read as it is
 * (docs/JOURNAL.md). It stays bounded: once its reports span more than 34
 * days it is rewritten (atomically) with the last 31 days and what the
 * forecaster learned from the older ones.
 *
 * Durability: each report is written before kez_adaptive_report returns, so
 * a kill of the process loses nothing a call accepted. It reaches the disk
 * every 12 reports or hour of report time, on kez_adaptive_sync and on
 * kez_adaptive_stop; a power cut loses at most the reports since the last
 * sync (kez_adaptive_journal_count with KEZ_JOURNAL_UNSAFE). Call
 * kez_adaptive_sync when the app goes to the background.
 *
 * One writer: a journal is locked while open; a second open of the same file,
 * in this process or another, fails with KEZ_JOURNAL_LOCKED.
 *
 * Status codes (they start at -2 so that -1 keeps meaning "null handle"): */
enum {
  /* Opened (created when missing, replayed when present), or written. A
   * torn last line (a write cut short by a crash or a power cut) is not an
   * error: the journal is replayed up to its last whole report, the torn
   * line is dropped and counted. Damaged lines in the middle are skipped
   * and counted too. */
  KEZ_JOURNAL_OK = 0,

  /* The file cannot be created or read: its folder is missing or not
   * writable, a directory has its name, or reading it failed. Check the
   * path; the app's files directory is the place for a journal. */
  KEZ_JOURNAL_CANNOT_OPEN = -2,

  /* Another open forecaster, in this process or another, has the journal.
   * Only one writer may hold a journal: close the other one first, or use
   * another file. */
  KEZ_JOURNAL_LOCKED = -3,

  /* The file is not a journal (it does not start with the journal's first
   * line). Nothing was changed in it. Use another path, or delete the file
   * when it is known to be a lost journal. */
  KEZ_JOURNAL_NOT_JOURNAL = -4,

  /* The journal was written by a newer version of the library, which may
   * write reports this version cannot read. Nothing was changed in it. */
  KEZ_JOURNAL_NEWER_VERSION = -5,

  /* The disk is full (or the file reached the process's size limit). The
   * reports stay in memory, the forecaster keeps working, and every later
   * report tries to write them again. */
  KEZ_JOURNAL_DISK_FULL = -6,

  /* Writing or syncing failed for another reason (an I/O error). As for
   * KEZ_JOURNAL_DISK_FULL, the reports stay in memory and are written
   * again with the next report. */
  KEZ_JOURNAL_WRITE_FAILED = -7,

  /* Memory for the journal could not be allocated. */
  KEZ_JOURNAL_NO_MEMORY = -8
};

/* Creates an adaptive forecaster with the journal `journalPath` (created when
 * missing, with its folder existing; replayed when present). `status`, when
 * not NULL, receives 0 or a KEZ_JOURNAL_* code. Returns the forecaster, or
 * NULL when it could not be opened (CANNOT_OPEN, LOCKED, NOT_JOURNAL,
 * NEWER_VERSION, NO_MEMORY; a null path is CANNOT_OPEN). After DISK_FULL or
 * WRITE_FAILED it is returned nevertheless, replayed, and writes what it
 * could not as soon as it can. */
KEZ_EXPORT kez_adaptive* kez_adaptive_open(const char* journalPath,
                                           int* status);

/* Writes what is held in memory and puts the journal on the disk. Returns 0
 * (also for a forecaster without a journal), KEZ_JOURNAL_DISK_FULL or
 * KEZ_JOURNAL_WRITE_FAILED (the reports stay held; the next report or sync
 * tries again), -1 for a null handle. */
KEZ_EXPORT int kez_adaptive_sync(kez_adaptive* a);

/* What kez_adaptive_journal_count counts. */
enum {
  /* Reports taken but not yet safely on the disk (written and not synced,
   * or held in memory after a failed write): what a power cut would lose. */
  KEZ_JOURNAL_UNSAFE = 0,
  /* Of those, the reports held in memory after a failed write: what a kill
   * of the process would lose. */
  KEZ_JOURNAL_HELD = 1,
  /* Reports lost: dropped from a full memory hold (more than a week of them
   * held), or still held at kez_adaptive_stop. */
  KEZ_JOURNAL_LOST = 2,
  /* Reports replayed when the journal was opened. */
  KEZ_JOURNAL_REPLAYED = 3,
  /* Damaged lines skipped when it was opened or rewritten. */
  KEZ_JOURNAL_DAMAGED = 4,
  /* Torn last lines dropped when it was opened (0 or 1). */
  KEZ_JOURNAL_TORN = 5,
  /* The status of the last write of a report or sync: 0, DISK_FULL or
   * WRITE_FAILED. */
  KEZ_JOURNAL_LAST_STATUS = 6
};

/* The count `what` (KEZ_JOURNAL_UNSAFE ...) of the forecaster's journal; 0
 * for a forecaster without a journal; -1 for a null handle or an unknown
 * `what`. */
KEZ_EXPORT long long kez_adaptive_journal_count(kez_adaptive* a, int what);

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KEZ_KEZ_H_ */
