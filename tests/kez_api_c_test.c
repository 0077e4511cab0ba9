/*
 * The public header as a C99 host uses it, linked against libkez.so: create
 * an instance, report a week of samples, forecast in all three variants,
 * stop; the same with an adaptive forecaster, and with one that keeps a
 * journal in a fresh temporary folder and is stopped and opened again.
 * Exits non-zero when a check failed.
 */
#define _POSIX_C_SOURCE 200809L
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include "kez/kez.h"

static int failures = 0;

#define CHECK(cond)                                              \
  do {                                                           \
    if (!(cond)) {                                               \
      fprintf(stderr, "%s:%d: check failed: %s\n", __FILE__,     \
              __LINE__, #cond);                                  \
      ++failures;                                                \
    }                                                            \
  } while (0)

#define STEPS 144
#define DAY_MS 86400000ULL

/* Discharges from 100 % at 07:00 to 30 % at 22:00, charges overnight. */
static void routine(uint64_t time_ms, float* level, float* charging) {
  double hour = (double)(time_ms % DAY_MS) / 3600000.0;
  if (hour >= 7.0 && hour < 22.0) {
    *level = (float)(100.0 - 70.0 * (hour - 7.0) / 15.0);
    *charging = 0.0f;
  } else {
    double since = hour >= 22.0 ? hour - 22.0 : hour + 2.0;
    double l = 30.0 + 28.0 * since;
    *level = (float)(l > 100.0 ? 100.0 : l);
    *charging = 1.0f;
  }
}

static int in_range(const stMobilePowerPredictionData* out, int count) {
  int k;
  for (k = 0; k < count; ++k) {
    if (!(out[k].level >= 0.0 && out[k].level <= 1.0)) return 0;
    if (!(out[k].charging >= 0.0 && out[k].charging <= 1.0)) return 0;
    if (k > 0 && out[k].distance != 0.0) return 0;
  }
  return 1;
}

/* The adaptive forecaster through the same header: eight days of the
 * routine, the three variants, the instance's own forecast and the weights. */
static void check_adaptive(void) {
  stMobilePowerPredictionData out[STEPS];
  double weights[16];
  char name[32];
  kez_adaptive* a;
  uint64_t start = 1700000000000ULL - (1700000000000ULL % DAY_MS);
  uint64_t t;
  int variant, n, m;
  double sum;

  CHECK(kez_adaptive_report(NULL, start, 50.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0,
                            0.0, 0.0) == -1);
  CHECK(kez_adaptive_predict(NULL, KEZ_VARIANT_FREE, STEPS, out) == -1);
  CHECK(kez_adaptive_predict_raw(NULL, KEZ_VARIANT_FREE, STEPS, out) == -1);
  CHECK(kez_adaptive_weights(NULL, KEZ_VARIANT_FREE, 0, 0, weights, 16) == -1);
  CHECK(kez_adaptive_scored(NULL, KEZ_VARIANT_FREE) == -1);
  kez_adaptive_stop(NULL);

  a = kez_adaptive_init();
  CHECK(a != NULL);
  if (a == NULL) return;
  for (t = start; t < start + 8 * DAY_MS; t += 300000ULL) {
    float level, charging;
    routine(t, &level, &charging);
    CHECK(kez_adaptive_report(a, t, level, charging, 0.0f, 0.0f, 0.0f, 0.0,
                              0.0, 0.0) == 1);
  }
  CHECK(kez_adaptive_report(a, t, 0.0f / 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0,
                            0.0, 0.0) == 0);
  CHECK(kez_adaptive_scored(a, KEZ_VARIANT_FREE) > 100);
  for (variant = KEZ_VARIANT_FREE; variant <= KEZ_VARIANT_PLUGGED_IN;
       ++variant) {
    CHECK(kez_adaptive_predict(a, variant, STEPS, out) == 1);
    CHECK(in_range(out, STEPS));
    CHECK(kez_adaptive_predict_raw(a, variant, STEPS, out) == 1);
    CHECK(in_range(out, STEPS));
    n = kez_adaptive_weights(a, variant, 0, 30, weights, 16);
    CHECK(n == kez_adaptive_method_count());
    sum = 0.0;
    for (m = 0; m < n; ++m) sum += weights[m];
    CHECK(sum > 0.999999 && sum < 1.000001);
  }
  CHECK(kez_adaptive_predict(a, 3, STEPS, out) == 0);
  CHECK(kez_adaptive_weights(a, KEZ_VARIANT_FREE, 1, 30, weights, 16) ==
        kez_adaptive_method_count());
  CHECK(kez_adaptive_weights(a, KEZ_VARIANT_NOT_CHARGED, 1, 30, weights,
                             16) == 0);
  CHECK(kez_adaptive_method_name(0, name, (int)sizeof name) == 8);
  CHECK(strcmp(name, "instance") == 0);
  CHECK(kez_adaptive_method_name(-1, name, (int)sizeof name) == -1);
  kez_adaptive_stop(a);
}

/* An adaptive forecaster with a journal: stopped after three days and
 * opened again, it forecasts exactly as one that never stopped. */
static void check_journal(void) {
  stMobilePowerPredictionData kept[STEPS], reopened[STEPS];
  char folder[256];
  char path[320];
  const char* base = getenv("TMPDIR");
  uint64_t start = 1700000000000ULL - (1700000000000ULL % DAY_MS);
  uint64_t t;
  kez_adaptive *a, *steady, *second;
  int status = 1, variant;

  CHECK(kez_adaptive_open(NULL, &status) == NULL);
  CHECK(status == KEZ_JOURNAL_CANNOT_OPEN);
  CHECK(kez_adaptive_sync(NULL) == -1);
  CHECK(kez_adaptive_journal_count(NULL, KEZ_JOURNAL_UNSAFE) == -1);
  snprintf(folder, sizeof folder, "%s/kez_api_c_test_XXXXXX",
           base != NULL && base[0] != '\0' ? base : "/tmp");
  if (mkdtemp(folder) == NULL) {
    CHECK(!"mkdtemp");
    return;
  }
  snprintf(path, sizeof path, "%s/history.csv", folder);

  a = kez_adaptive_open(path, &status);
  CHECK(a != NULL && status == KEZ_JOURNAL_OK);
  steady = kez_adaptive_init();
  if (a == NULL || steady == NULL) return;
  second = kez_adaptive_open(path, &status);
  CHECK(second == NULL && status == KEZ_JOURNAL_LOCKED);
  for (t = start; t < start + 3 * DAY_MS; t += 300000ULL) {
    float level, charging;
    routine(t, &level, &charging);
    CHECK(kez_adaptive_report(a, t, level, charging, 0.0f, 0.0f, 0.0f, 0.0,
                              0.0, 0.0) == 1);
    CHECK(kez_adaptive_report(steady, t, level, charging, 0.0f, 0.0f, 0.0f,
                              0.0, 0.0, 0.0) == 1);
  }
  /* Refused reports stay out of the journal. */
  CHECK(kez_adaptive_report(a, t, 0.0f / 0.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0,
                            0.0, 0.0) == 0);
  CHECK(kez_adaptive_sync(a) == KEZ_JOURNAL_OK);
  CHECK(kez_adaptive_journal_count(a, KEZ_JOURNAL_UNSAFE) == 0);
  kez_adaptive_stop(a);

  a = kez_adaptive_open(path, &status);
  CHECK(a != NULL && status == KEZ_JOURNAL_OK);
  if (a != NULL) {
    CHECK(kez_adaptive_journal_count(a, KEZ_JOURNAL_REPLAYED) ==
          (long long)(3 * DAY_MS / 300000ULL));
    CHECK(kez_adaptive_journal_count(a, KEZ_JOURNAL_TORN) == 0);
    for (variant = KEZ_VARIANT_FREE; variant <= KEZ_VARIANT_PLUGGED_IN;
         ++variant) {
      CHECK(kez_adaptive_predict(a, variant, STEPS, reopened) == 1);
      CHECK(kez_adaptive_predict(steady, variant, STEPS, kept) == 1);
      CHECK(memcmp(reopened, kept, sizeof kept) == 0);
    }
    kez_adaptive_stop(a);
  }
  kez_adaptive_stop(steady);
  CHECK(unlink(path) == 0);
  CHECK(rmdir(folder) == 0);
}

int main(void) {
  char version[256];
  stMobilePowerPredictionData out[STEPS];
  kez_handle handle;
  uint64_t t;
  const uint64_t start = 1704067200000ULL; /* 2024-01-01 00:00 UTC */
  int k;

  CHECK(kez_get_version(version, (int)sizeof version) == 7);
  CHECK(strcmp(version, "1.04.21") == 0);

  /* Null handles are harmless. */
  CHECK(kez_predict(NULL, STEPS, out) == -1);
  CHECK(kez_addStatusValue(NULL, start, 50.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0,
                           0.0, 0.0) == 0);
  kez_addStatusValues(NULL, "1,2,3");
  kez_stop(NULL);

  handle = kez_init();
  CHECK(handle != NULL);
  if (handle == NULL) return 1;

  /* Without history the forecast extrapolates. */
  CHECK(kez_addStatusValue(handle, start, 80.0f, 0.0f, 0.0f, 0.0f, 0.0f, 0.0,
                           0.0, 0.0) == 1);
  CHECK(kez_predict(handle, STEPS, out) == 1);
  CHECK(out[0].distance == 100.0);
  CHECK(out[0].level < 0.8 && out[0].level > 0.79);
  CHECK(in_range(out, STEPS));

  /* A week every 5 minutes, half of them as log lines. */
  for (t = start + 300000ULL; t <= start + 7 * DAY_MS; t += 300000ULL) {
    float level, charging;
    routine(t, &level, &charging);
    if ((t / 300000ULL) % 2 == 0) {
      CHECK(kez_addStatusValue(handle, t, level, charging, 0.5f, 0.25f, 0.0f,
                               20.0, 5.0, 5.0) == 1);
    } else {
      char line[512];
      int n = snprintf(line, sizeof line, "%llu,x,%.4f,%d",
                       (unsigned long long)t, (double)level,
                       charging > 0.5f ? 1 : 0);
      for (k = 4; k < 35 && n > 0 && n < (int)sizeof line - 16; ++k) {
        n += snprintf(line + n, sizeof line - (size_t)n, ",%d", k);
      }
      kez_addStatusValues(handle, line);
    }
  }

  CHECK(kez_similar_moments(handle, STEPS) > 0);
  CHECK(kez_predict(handle, STEPS, out) == 1);
  CHECK(out[0].distance < 100.0);
  CHECK(in_range(out, STEPS));
  /* Midnight now: still charging, and at noon discharging. */
  CHECK(out[3].charging > 0.5);
  CHECK(out[71].charging < 0.5);
  CHECK(kez_forecast_find(out, STEPS, KEZ_QUERY_LEVEL_AT_OR_ABOVE, 0.999) >= 0);

  CHECK(kez_predict_without_charging(handle, STEPS, out) == 1);
  CHECK(in_range(out, STEPS));
  for (k = 0; k < STEPS; ++k) CHECK(out[k].charging == 0.0);

  CHECK(kez_predict_at_charging_starting(handle, STEPS, out) == 1);
  CHECK(in_range(out, STEPS));
  for (k = 0; k < STEPS; ++k) CHECK(out[k].charging == 1.0);

  kez_stop(handle);

  check_adaptive();
  check_journal();

  if (failures != 0) {
    fprintf(stderr, "%d checks failed\n", failures);
    return 1;
  }
  printf("kez_api_c_test: all checks passed\n");
  return 0;
}
