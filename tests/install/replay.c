/*
 * kez-install-replay: a C99 host of an installed libkez. Replays a battery
 * log through kez_addStatusValue, one call per data row, and prints the
 * forecasts in the text of the in-tree kez-forecast-dump
 * (tests/portability/ForecastDump.cc) with its default options: after every
 * 288th row and after the last one, the three forecast variants of 144
 * steps as hexadecimal floats and the kez_forecast_find answers for "empty",
 * "20 %", "80 %", "full" and "charging". A library installed from this
 * source tree must make both programs print the same bytes.
 *
 * Usage: kez-install-replay LOG.csv
 *
 * The log is CSV with a header naming its columns: time_ms, level_percent and
 * charging are required; aux1, aux2, aux3, countA, countB1 and countB2 are
 * taken by name when present and are 0 otherwise.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "kez/kez.h"

#define MAX_LINE 65536
#define MAX_FIELDS 256
#define EVERY 288
#define STEPS 144

static const char* const kNames[9] = {"time_ms", "level_percent", "charging",
                                      "aux1",    "aux2",          "aux3",
                                      "countA",  "countB1",       "countB2"};

static const struct {
  int query;
  double threshold;
} kQueries[5] = {
    {KEZ_QUERY_LEVEL_AT_OR_BELOW, 0.0},    {KEZ_QUERY_LEVEL_AT_OR_BELOW, 0.2},
    {KEZ_QUERY_LEVEL_AT_OR_ABOVE, 0.8},    {KEZ_QUERY_LEVEL_AT_OR_ABOVE, 1.0},
    {KEZ_QUERY_CHARGING_AT_OR_ABOVE, 0.5},
};

/* Cuts `line` at its commas; returns the number of fields. */
static int Split(char* line, char** fields) {
  int n = 0;
  char* p = line;
  for (;;) {
    char* comma = strchr(p, ',');
    if (n < MAX_FIELDS) fields[n++] = p;
    if (comma == NULL) break;
    *comma = '\0';
    p = comma + 1;
  }
  return n;
}

static void PrintForecasts(kez_handle handle, long row, const char* time) {
  static stMobilePowerPredictionData out[STEPS];
  int (*const variants[3])(kez_handle, int, stMobilePowerPredictionData*) = {
      kez_predict, kez_predict_without_charging,
      kez_predict_at_charging_starting};
  int v, k, q;
  printf("at row %ld time_ms %s\n", row, time);
  for (v = 0; v < 3; ++v) {
    int result;
    memset(out, 0, sizeof out);
    result = variants[v](handle, STEPS, out);
    printf("variant %d result %d distance %a\n", v, result, out[0].distance);
    for (k = 0; k < STEPS; ++k) {
      printf("step %d %a %a\n", k, out[k].level, out[k].charging);
    }
    for (q = 0; q < 5; ++q) {
      printf("find %d %a %d\n", kQueries[q].query, kQueries[q].threshold,
             kez_forecast_find(out, STEPS, kQueries[q].query,
                               kQueries[q].threshold));
    }
  }
}

int main(int argc, char** argv) {
  static char line[MAX_LINE];
  static char time[64] = "";
  char* fields[MAX_FIELDS];
  int column[9];
  int have_header = 0;
  int printed_last = 0;
  long row = 0;
  char version[16];
  kez_handle handle;
  FILE* in;
  int i;

  if (argc != 2) {
    fprintf(stderr, "usage: kez-install-replay LOG.csv\n");
    return 2;
  }
  in = fopen(argv[1], "r");
  if (in == NULL) {
    fprintf(stderr, "kez-install-replay: cannot read %s\n", argv[1]);
    return 1;
  }
  kez_get_version(version, (int)sizeof version);
  printf("version %s\n", version);
  handle = kez_init();
  while (fgets(line, sizeof line, in) != NULL) {
    size_t len = strlen(line);
    int n;
    const char* text[9];
    if (len > 0 && line[len - 1] == '\n') line[--len] = '\0';
    if (len > 0 && line[len - 1] == '\r') line[--len] = '\0';
    if (line[0] < '0' || line[0] > '9') {
      if (!have_header) {
        n = Split(line, fields);
        for (i = 0; i < 9; ++i) {
          int c;
          column[i] = -1;
          for (c = 0; c < n; ++c) {
            if (strcmp(fields[c], kNames[i]) == 0) {
              column[i] = c;
              break;
            }
          }
          if (i < 3 && column[i] < 0) {
            fprintf(stderr, "kez-install-replay: no column %s\n", kNames[i]);
            return 1;
          }
        }
        have_header = 1;
      }
      continue;
    }
    if (!have_header) {
      fprintf(stderr, "kez-install-replay: %s has no header\n", argv[1]);
      return 1;
    }
    n = Split(line, fields);
    for (i = 0; i < 9; ++i) {
      text[i] = column[i] >= 0 && column[i] < n ? fields[column[i]] : "0";
    }
    snprintf(time, sizeof time, "%s", text[0]);
    kez_addStatusValue(handle, strtoull(text[0], NULL, 10),
                       strtof(text[1], NULL), strtof(text[2], NULL),
                       strtof(text[3], NULL), strtof(text[4], NULL),
                       strtof(text[5], NULL), strtod(text[6], NULL),
                       strtod(text[7], NULL), strtod(text[8], NULL));
    ++row;
    printed_last = row % EVERY == 0;
    if (printed_last) PrintForecasts(handle, row, time);
  }
  if (!printed_last) PrintForecasts(handle, row, time);
  fclose(in);
  kez_stop(handle);
  return 0;
}
