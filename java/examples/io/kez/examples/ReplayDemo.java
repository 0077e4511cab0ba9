package io.kez.examples;

import io.kez.Forecast;
import io.kez.Forecaster;
import io.kez.Variant;
import java.io.BufferedReader;
import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Paths;
import java.time.Duration;
import java.time.Instant;
import java.time.ZoneOffset;
import java.time.format.DateTimeFormatter;
import java.util.ArrayList;
import java.util.List;
import java.util.Locale;
import java.util.Optional;

/**
 * Replays a battery log through the Java API the way an app uses it: a report every 5 minutes
 * of the log's time (repeating the last logged state between logged samples, as an app reports
 * its current state on a timer), and a look at the forecasts now and then.
 *
 * <pre>
 * java -Djava.library.path=BUILD -cp BUILD/java/kez.jar:BUILD/java/examples \
 *     io.kez.examples.ReplayDemo examples/routine-35d.csv [HOURS]
 * </pre>
 *
 * <p>The log is CSV with a header: time_ms, level_percent and charging are required; aux1,
 * aux2, aux3, countA, countB1 and countB2 are used when present. Every HOURS hours of log time
 * (default 24, counted from midnight UTC) one line shows what an app would: the level now, the
 * free forecast for a few hours ahead, how long the battery lasts without a charger and how long
 * a charge would take. At the end the next 24 hours are shown hour by hour.
 */
public final class ReplayDemo {
  private static final long REPORT_MS = 5 * 60 * 1000L;
  private static final String[] COLUMNS = {
      "time_ms", "level_percent", "charging", "aux1", "aux2", "aux3",
      "countA", "countB1", "countB2"};
  private static final DateTimeFormatter CLOCK =
      DateTimeFormatter.ofPattern("yyyy-MM-dd HH:mm", Locale.ROOT).withZone(ZoneOffset.UTC);

  /** One logged state. */
  private static final class Sample {
    long timeMs;
    float level;
    boolean charging;
    float aux1, aux2, aux3;
    double countA, countB1, countB2;
  }

  private ReplayDemo() {}

  public static void main(String[] args) throws IOException {
    if (args.length < 1 || args.length > 2) {
      System.err.println("usage: ReplayDemo LOG.csv [HOURS]");
      System.exit(2);
    }
    long everyMs = (args.length > 1 ? Long.parseLong(args[1]) : 24) * 3600 * 1000L;
    List<Sample> log = read(args[0]);
    if (log.isEmpty()) {
      System.err.println("ReplayDemo: no samples in " + args[0]);
      System.exit(1);
    }
    System.out.println("libkez " + Forecaster.version() + ": replaying " + log.size()
        + " logged samples, a report every 5 minutes (times UTC)");
    try (Forecaster forecaster = new Forecaster()) {
      long start = log.get(0).timeMs;
      long end = log.get(log.size() - 1).timeMs;
      long nextLook = (start / everyMs + 1) * everyMs;
      int i = 0;
      Sample now = log.get(0);
      for (long t = start; t <= end; t += REPORT_MS) {
        while (i < log.size() && log.get(i).timeMs <= t) now = log.get(i++);
        forecaster.report(t, now.level, now.charging, now.aux1, now.aux2, now.aux3, now.countA,
            now.countB1, now.countB2);
        if (t >= nextLook) {
          System.out.println(summary(forecaster, t, now));
          nextLook += everyMs;
        }
      }
      System.out.println();
      System.out.println("Next 24 hours after " + CLOCK.format(Instant.ofEpochMilli(end))
          + " (free forecast):");
      Forecast day = forecaster.forecast(Variant.FREE);
      for (int k = 5; k < day.size(); k += 6) {
        Forecast.Step s = day.steps().get(k);
        System.out.printf(Locale.ROOT, "  %s  %5.1f %%  charging %3.0f %%%n",
            CLOCK.format(Instant.ofEpochMilli(end + s.minutesAhead() * 60000L)),
            s.levelPercent(), 100.0 * s.chargingChance());
      }
    }
  }

  private static String summary(Forecaster forecaster, long t, Sample now) {
    Forecast free = forecaster.forecast(Variant.FREE);
    Forecast unplugged = forecaster.forecast(Variant.WITHOUT_CHARGING);
    Forecast plugged = forecaster.forecast(Variant.CHARGING_STARTING);
    return String.format(Locale.ROOT,
        "%s  now %5.1f %% %-12s  in 3 h %5.1f %%  in 6 h %5.1f %%  in 12 h %5.1f %%"
            + "  empty without charger: %-8s  full if plugged in: %-8s  distance %.2f",
        CLOCK.format(Instant.ofEpochMilli(t)), now.level,
        now.charging ? "(charging)" : "(on battery)", free.levelPercent(17),
        free.levelPercent(35), free.levelPercent(71), text(unplugged.timeUntilEmpty()),
        text(plugged.timeUntilFull()), free.distance());
  }

  private static String text(Optional<Duration> d) {
    if (!d.isPresent()) return "> 1 day";
    long minutes = d.get().toMinutes();
    return String.format(Locale.ROOT, "%dh%02d", minutes / 60, minutes % 60);
  }

  private static List<Sample> read(String path) throws IOException {
    List<Sample> samples = new ArrayList<>();
    try (BufferedReader in = Files.newBufferedReader(Paths.get(path), StandardCharsets.UTF_8)) {
      String header = in.readLine();
      if (header == null) return samples;
      int[] at = new int[COLUMNS.length];
      List<String> names = List.of(header.trim().split(","));
      for (int c = 0; c < COLUMNS.length; c++) {
        at[c] = names.indexOf(COLUMNS[c]);
        if (c < 3 && at[c] < 0) throw new IOException(path + ": no column " + COLUMNS[c]);
      }
      for (String line; (line = in.readLine()) != null; ) {
        if (line.trim().isEmpty()) continue;
        String[] f = line.trim().split(",", -1);
        Sample s = new Sample();
        s.timeMs = Long.parseLong(f[at[0]]);
        s.level = Float.parseFloat(f[at[1]]);
        s.charging = Float.parseFloat(f[at[2]]) > 0.5f;
        s.aux1 = (float) number(f, at[3], true);
        s.aux2 = (float) number(f, at[4], true);
        s.aux3 = (float) number(f, at[5], true);
        s.countA = number(f, at[6], false);
        s.countB1 = number(f, at[7], false);
        s.countB2 = number(f, at[8], false);
        samples.add(s);
      }
    }
    return samples;
  }

  /** A column's value (0 when the column is missing), read as a float or as a double. */
  private static double number(String[] fields, int at, boolean single) {
    if (at < 0 || at >= fields.length || fields[at].isEmpty()) return 0.0;
    return single ? Float.parseFloat(fields[at]) : Double.parseDouble(fields[at]);
  }
}
