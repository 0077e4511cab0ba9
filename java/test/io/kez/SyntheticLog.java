package io.kez;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;

/**
 * A made-up phone with a daily routine (on the charger from 23:00 to 07:00, a heavy hour at
 * noon, every day a little different), reported every 5 minutes. Written as a CSV with a header
 * (the nine values) or as 35-column status log lines, so that Java and C read the same text.
 */
final class SyntheticLog {
  static final long START_MS = 1614556800000L; // 2021-03-01 00:00 UTC
  static final int REPORTS_PER_DAY = 288;

  final List<String[]> rows = new ArrayList<>(); // the nine values as text

  SyntheticLog(int days) {
    double level = 60.0;
    for (int i = 0; i < days * REPORTS_PER_DAY; i++) {
      int day = i / REPORTS_PER_DAY;
      int minute = (i % REPORTS_PER_DAY) * 5;
      boolean charging = minute >= 23 * 60 || minute < 7 * 60 + 5 * (day % 3);
      if (charging) {
        level = Math.min(100.0, level + 1.3);
      } else {
        double use = 0.25 + 0.05 * (day % 4);
        if (minute >= 12 * 60 && minute < 13 * 60) use += 0.9;
        level = Math.max(0.0, level - use);
      }
      long time = START_MS + i * 300000L;
      rows.add(new String[] {
          Long.toString(time),
          String.format(Locale.ROOT, "%.1f", level),
          charging ? "1" : "0",
          String.format(Locale.ROOT, "%.2f", 24.0 + 0.01 * (minute % 97)),
          Integer.toString(minute % 7),
          String.format(Locale.ROOT, "%.3f", 0.125 * (day % 5)),
          Integer.toString(1 + (minute * 13) % 200),
          Integer.toString(minute % 60),
          Integer.toString(day)});
    }
  }

  Path writeCsv(Path dir) throws IOException {
    List<String> lines = new ArrayList<>();
    lines.add("time_ms,level_percent,charging,aux1,aux2,aux3,countA,countB1,countB2");
    for (String[] r : rows) lines.add(String.join(",", r));
    return Files.write(dir.resolve("routine.csv"), lines, StandardCharsets.UTF_8);
  }

  /** Status log lines: the values at columns 0, 2, 3, 24-26, 29, 19, 20; filler elsewhere. */
  List<String> statusLines() {
    List<String> lines = new ArrayList<>();
    for (String[] r : rows) {
      String[] c = new String[35];
      for (int i = 0; i < c.length; i++) c[i] = "f" + i;
      c[0] = r[0];
      c[2] = r[1];
      c[3] = r[2];
      c[24] = r[3];
      c[25] = r[4];
      c[26] = r[5];
      c[29] = r[6];
      c[19] = r[7];
      c[20] = r[8];
      lines.add(String.join(",", c));
    }
    return lines;
  }

  Path writeStatusLines(Path dir) throws IOException {
    return Files.write(dir.resolve("status.log"), statusLines(), StandardCharsets.UTF_8);
  }
}
