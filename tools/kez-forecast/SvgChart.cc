#include "SvgChart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "CivilTime.h"
#include "MarkupText.h"
#include "TimeText.h"

namespace kez_tools {
namespace {

constexpr double kWidth = 1000, kHeight = 540;
constexpr double kLeft = 64, kRight = 980, kTop = 70, kBottom = 420;
const char kFont[] = "DejaVu Sans, Helvetica, Arial, sans-serif";
const char* const kColor[kVariantCount] = {"#1f5fbf", "#d9480f", "#2b8a3e"};
const char* const kDash[kVariantCount] = {"", "7 4", "2 3"};
const char kCharging[] = "#37b24d";

class Chart {
 public:
  Chart(std::ostream& out, const ChartInput& in) : out_(out), in_(in) {
    const Forecast& f = in.forecast;
    t1_ = f.StepTime(std::max(f.steps, 1) - 1);
    t0_ = f.start_ms - in.history_ms;
    if (!in.log->samples.empty()) {
      t0_ = std::max(t0_, in.log->samples.front().time_ms);
    }
    if (t1_ - t0_ < 6 * 3600 * 1000LL) t0_ = t1_ - 6 * 3600 * 1000LL;
  }

  void Draw() {
    out_ << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << kWidth
         << "\" height=\"" << kHeight << "\" viewBox=\"0 0 " << kWidth << " "
         << kHeight << "\" font-family=\"" << kFont << "\">\n";
    out_ << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
    out_ << "<rect x=\"" << kLeft << "\" y=\"" << kTop << "\" width=\""
         << kRight - kLeft << "\" height=\"" << kBottom - kTop
         << "\" fill=\"#f8f9fa\"/>\n";
    Title();
    ChargingShades();
    Grid();
    History();
    Forecasts();
    NowLine();
    Legend();
    out_ << "</svg>\n";
  }

 private:
  double X(int64_t t) const {
    return kLeft + (kRight - kLeft) * static_cast<double>(t - t0_) /
                       static_cast<double>(t1_ - t0_);
  }
  double Y(double percent) const {
    return kBottom - (kBottom - kTop) * std::min(100.0, std::max(0.0, percent)) /
                         100.0;
  }

  void Text(double x, double y, const std::string& s, int size,
            const char* anchor = "start", const char* fill = "#343a40",
            const char* weight = "normal") {
    out_ << "<text x=\"" << SvgNumber(x) << "\" y=\"" << SvgNumber(y) << "\" font-size=\""
         << size << "\" text-anchor=\"" << anchor << "\" fill=\"" << fill
         << "\" font-weight=\"" << weight << "\">" << XmlEscape(s) << "</text>\n";
  }

  void Title() {
    Text(kLeft, 30, in_.title, 18, "start", "#212529", "bold");
    Text(kLeft, 52, in_.subtitle, 13, "start", "#495057");
  }

  void Shade(int64_t a, int64_t b, double opacity) {
    a = std::max(a, t0_);
    b = std::min(b, t1_);
    if (b <= a || opacity <= 0.004) return;
    out_ << "<rect x=\"" << SvgNumber(X(a)) << "\" y=\"" << kTop << "\" width=\""
         << SvgNumber(X(b) - X(a)) << "\" height=\"" << kBottom - kTop
         << "\" fill=\"" << kCharging << "\" fill-opacity=\""
         << SvgNumber(opacity * 100) << "%\"/>\n";
  }

  void ChargingShades() {
    const std::vector<LogSample>& s = in_.log->samples;
    int64_t start = -1;
    for (size_t i = 0; i < s.size() && s[i].time_ms <= in_.cut_ms; ++i) {
      bool on = s[i].charging > 0.5;
      int64_t end = i + 1 < s.size() ? std::min(s[i + 1].time_ms, in_.cut_ms)
                                     : s[i].time_ms;
      bool silent = i + 1 < s.size() &&
                    s[i + 1].time_ms - s[i].time_ms > in_.max_silence_ms;
      if (on && start < 0) start = s[i].time_ms;
      if (start >= 0 && (!on || silent || i + 1 == s.size() ||
                         s[i + 1].time_ms > in_.cut_ms)) {
        Shade(start, on && !silent ? end : s[i].time_ms, 0.16);
        start = -1;
      }
    }
    const Forecast& f = in_.forecast;
    if (f.has[kFree]) {
      for (int k = 0; k < f.steps; ++k) {
        Shade(f.StepTime(k) - kStepMs, f.StepTime(k),
              0.32 * f.records[kFree][k].charging);
      }
    }
  }

  void Grid() {
    for (int p = 0; p <= 100; p += 10) {
      bool major = p % 20 == 0;
      out_ << "<line x1=\"" << kLeft << "\" x2=\"" << kRight << "\" y1=\""
           << SvgNumber(Y(p)) << "\" y2=\"" << SvgNumber(Y(p)) << "\" stroke=\""
           << (major ? "#ced4da" : "#e9ecef") << "\" stroke-width=\"1\"/>\n";
      if (major) {
        Text(kLeft - 8, Y(p) + 4, std::to_string(p) + " %", 12, "end");
      }
    }
    // Time ticks every 6 hours of the wall clock; midnights carry the date.
    const int64_t six = 6 * 3600 * 1000LL;
    int64_t span = t1_ - t0_;
    int64_t tick = span > 4 * 86400000LL ? 2 * six : six;
    int64_t wall0 = t0_ + in_.zone.OffsetMs(t0_);
    for (int64_t w = FloorDiv(wall0, tick) * tick + tick;; w += tick) {
      int64_t t = in_.zone.FromWall(w);
      if (t > t1_) break;
      CivilTime c = in_.zone.ToCivil(t);
      bool midnight = c.hour == 0 && c.minute == 0;
      out_ << "<line x1=\"" << SvgNumber(X(t)) << "\" x2=\"" << SvgNumber(X(t))
           << "\" y1=\"" << kTop << "\" y2=\"" << kBottom << "\" stroke=\""
           << (midnight ? "#adb5bd" : "#dee2e6") << "\" stroke-width=\"1\"/>\n";
      Text(X(t), kBottom + 18, FormatClock(t, in_.zone), 12, "middle");
      if (midnight) {
        static const char* const kDay[7] = {"Sun", "Mon", "Tue", "Wed",
                                            "Thu", "Fri", "Sat"};
        static const char* const kMonth[12] = {"Jan", "Feb", "Mar", "Apr",
                                               "May", "Jun", "Jul", "Aug",
                                               "Sep", "Oct", "Nov", "Dec"};
        Text(X(t), kBottom + 34,
             std::string(kDay[c.weekday]) + " " + std::to_string(c.day) + " " +
                 kMonth[c.month - 1],
             12, "middle", "#212529", "bold");
      }
    }
    out_ << "<rect x=\"" << kLeft << "\" y=\"" << kTop << "\" width=\""
         << kRight - kLeft << "\" height=\"" << kBottom - kTop
         << "\" fill=\"none\" stroke=\"#868e96\" stroke-width=\"1\"/>\n";
    out_ << "<text transform=\"translate(16," << SvgNumber((kTop + kBottom) / 2)
         << ") rotate(-90)\" font-size=\"13\" text-anchor=\"middle\" "
            "fill=\"#495057\">battery level</text>\n";
  }

  // The logged level as lines, broken at silences longer than the replay's
  // limit. `after` draws what the log holds after the forecast point.
  void LoggedLine(bool after) {
    const std::vector<LogSample>& s = in_.log->samples;
    std::string points;
    auto flush = [&]() {
      if (points.empty()) return;
      out_ << "<polyline fill=\"none\" stroke=\""
           << (after ? "#868e96" : "#343a40") << "\" stroke-width=\""
           << (after ? "1.6" : "2.2") << "\" stroke-linejoin=\"round\""
           << (after ? " stroke-dasharray=\"5 4\"" : "") << " points=\""
           << points << "\"/>\n";
      points.clear();
    };
    auto add = [&](const LogSample& x) {
      points += SvgNumber(X(x.time_ms)) + "," + SvgNumber(Y(x.level_percent)) + " ";
    };
    const LogSample* prev = nullptr;
    for (const LogSample& x : s) {
      if (x.time_ms > t1_) break;
      bool is_after = x.time_ms > in_.cut_ms;
      if (is_after == after && x.time_ms >= t0_) {
        if (prev != nullptr && x.time_ms - prev->time_ms > in_.max_silence_ms) {
          flush();
        } else if (after && points.empty() && prev != nullptr &&
                   prev->time_ms >= t0_) {
          add(*prev);  // continue from the last replayed sample
        }
        add(x);
      }
      prev = &x;
    }
    flush();
  }

  void History() {
    LoggedLine(false);
    LoggedLine(true);
  }

  void Forecasts() {
    const Forecast& f = in_.forecast;
    // Plugged in, then not charged, then the free forecast on top.
    for (int v : {kCharge, kNoCharge, kFree}) {
      if (!f.has[v]) continue;
      std::string points = SvgNumber(X(f.start_ms)) + "," + SvgNumber(Y(f.level_now)) + " ";
      for (int k = 0; k < f.steps; ++k) {
        points += SvgNumber(X(f.StepTime(k))) + "," +
                  SvgNumber(Y(f.records[v][k].level * 100.0)) + " ";
      }
      out_ << "<polyline fill=\"none\" stroke=\"" << kColor[v]
           << "\" stroke-width=\"" << (v == kFree ? "2.6" : "2")
           << "\" stroke-linejoin=\"round\"";
      if (kDash[v][0]) out_ << " stroke-dasharray=\"" << kDash[v] << "\"";
      out_ << " points=\"" << points << "\"/>\n";
    }
  }

  void NowLine() {
    const Forecast& f = in_.forecast;
    double x = X(f.start_ms);
    out_ << "<line x1=\"" << SvgNumber(x) << "\" x2=\"" << SvgNumber(x) << "\" y1=\""
         << kTop << "\" y2=\"" << kBottom
         << "\" stroke=\"#212529\" stroke-width=\"1.2\" "
            "stroke-dasharray=\"3 3\"/>\n";
    out_ << "<circle cx=\"" << SvgNumber(x) << "\" cy=\"" << SvgNumber(Y(f.level_now))
         << "\" r=\"4\" fill=\"#212529\"/>\n";
    Text(x + 6, kBottom - 8, "now " + FormatDayClock(f.start_ms, in_.zone), 12,
         "start", "#212529", "bold");
  }

  void LegendLine(double* x, double y, const char* color, const char* dash,
                  const std::string& label) {
    out_ << "<line x1=\"" << SvgNumber(*x) << "\" x2=\"" << SvgNumber(*x + 28)
         << "\" y1=\"" << SvgNumber(y) << "\" y2=\"" << SvgNumber(y) << "\" stroke=\""
         << color << "\" stroke-width=\"2.4\"";
    if (dash[0]) out_ << " stroke-dasharray=\"" << dash << "\"";
    out_ << "/>\n";
    Text(*x + 34, y + 4, label, 12);
    *x += 34 + 7.2 * static_cast<double>(label.size()) + 22;
  }

  void LegendBox(double* x, double y, double opacity,
                 const std::string& label) {
    out_ << "<rect x=\"" << SvgNumber(*x) << "\" y=\"" << SvgNumber(y - 7)
         << "\" width=\"28\" height=\"14\" fill=\"" << kCharging
         << "\" fill-opacity=\"" << SvgNumber(opacity * 100) << "%\"/>\n";
    Text(*x + 34, y + 4, label, 12);
    *x += 34 + 7.2 * static_cast<double>(label.size()) + 22;
  }

  void Legend() {
    const Forecast& f = in_.forecast;
    double x = kLeft;
    double y = kBottom + 64;
    LegendLine(&x, y, "#343a40", "", "logged level");
    bool after = !in_.log->samples.empty() &&
                 in_.log->samples.back().time_ms > in_.cut_ms;
    if (after) LegendLine(&x, y, "#868e96", "5 4", "logged after the forecast point");
    for (int v = 0; v < kVariantCount; ++v) {
      if (!f.has[v]) continue;
      std::string label = v == kFree ? "forecast"
                          : v == kNoCharge ? "if not charged"
                                           : "if plugged in now";
      LegendLine(&x, y, kColor[v], kDash[v], label);
    }
    x = kLeft;
    y += 26;
    LegendBox(&x, y, 0.16, "charging (logged)");
    if (f.has[kFree]) {
      LegendBox(&x, y, 0.32, "chance of charging (forecast; darker = likelier)");
    }
  }

  std::ostream& out_;
  const ChartInput& in_;
  int64_t t0_;
  int64_t t1_;
};

}  // namespace

void WriteSvgChart(std::ostream& out, const ChartInput& input) {
  static const Log kEmpty;
  ChartInput in = input;
  if (in.log == nullptr) in.log = &kEmpty;
  Chart(out, in).Draw();
}

}  // namespace kez_tools
