/*
 * libkez: battery charge and discharge forecasts for phones.
 *
 * The host creates one instance with kez_init(), reports the phone's status
 * every few minutes with kez_addStatusValue() (or one log line with
 * kez_addStatusValues()), asks for forecasts whenever it wants, and frees the
 * instance with kez_stop(). Nothing is saved: the learned history lives in
 * the instance and dies with it.
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

#ifdef __cplusplus
} /* extern "C" */
#endif

#endif /* KEZ_KEZ_H_ */
