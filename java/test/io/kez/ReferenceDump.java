package io.kez;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertTrue;

import java.io.ByteArrayOutputStream;
import java.io.IOException;
import java.io.InputStream;
import java.nio.charset.StandardCharsets;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/**
 * The forecasts that the C interface gives for a log, as printed by kez-forecast-dump (its path
 * is the system property {@code kez.dump}): per checkpoint and variant the exact doubles and the
 * kez_forecast_find answers. With {@code --records} the dump reads a made-up forecast instead and
 * prints only its answers ({@link #finds}).
 */
final class ReferenceDump {
  static final class Variant {
    double distance;
    final List<double[]> steps = new ArrayList<>(); // {level, charging}
    final List<double[]> finds = new ArrayList<>(); // {query, threshold, index}
  }

  static final class Checkpoint {
    long row;
    final List<Variant> variants = new ArrayList<>();
  }

  final String version;
  final List<Checkpoint> checkpoints = new ArrayList<>();
  /** The answers over a made-up forecast (--records): {query, threshold, index}. */
  final List<double[]> finds = new ArrayList<>();

  private ReferenceDump(String text) {
    String v = null;
    Checkpoint cp = null;
    Variant var = null;
    for (String line : text.split("\n")) {
      String[] f = line.trim().split(" ");
      switch (f[0]) {
        case "version":
          v = f[1];
          break;
        case "at":
          cp = new Checkpoint();
          cp.row = Long.parseLong(f[2]);
          checkpoints.add(cp);
          break;
        case "variant":
          var = new Variant();
          var.distance = Double.parseDouble(f[5]);
          cp.variants.add(var);
          break;
        case "step":
          var.steps.add(new double[] {Double.parseDouble(f[2]), Double.parseDouble(f[3])});
          break;
        case "find":
          (var != null ? var.finds : finds).add(new double[] {
              Double.parseDouble(f[1]), Double.parseDouble(f[2]), Double.parseDouble(f[3])});
          break;
        default:
          break;
      }
    }
    version = v;
  }

  /** Runs the dump program on {@code log} with the given options. */
  static ReferenceDump run(Path log, String... options) throws IOException, InterruptedException {
    String dump = System.getProperty("kez.dump");
    assertTrue("system property kez.dump names kez-forecast-dump", dump != null);
    List<String> command = new ArrayList<>();
    command.add(dump);
    command.addAll(Arrays.asList(options));
    command.add(log.toString());
    Process p = new ProcessBuilder(command).redirectError(ProcessBuilder.Redirect.INHERIT).start();
    String out = readAll(p.getInputStream());
    assertEquals("kez-forecast-dump exit code", 0, p.waitFor());
    return new ReferenceDump(out);
  }

  private static String readAll(InputStream in) throws IOException {
    ByteArrayOutputStream buffer = new ByteArrayOutputStream();
    byte[] chunk = new byte[1 << 16];
    for (int n; (n = in.read(chunk)) > 0; ) buffer.write(chunk, 0, n);
    return new String(buffer.toByteArray(), StandardCharsets.US_ASCII);
  }
}
