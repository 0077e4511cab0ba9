/*
 * The public header as a C99 host uses it, linked against libkez.so: create
 * an instance, report a week of samples, forecast in all three variants,
 * stop. Exits non-zero at the first failed check.
 */
#include <stdint.h>
#include <stdio.h>
#include <string.h>

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

  if (failures != 0) {
    fprintf(stderr, "%d checks failed\n", failures);
    return 1;
  }
  printf("kez_api_c_test: all checks passed\n");
  return 0;
}
