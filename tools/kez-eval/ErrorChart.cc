#include "ErrorChart.h"

#include <cmath>
#include <cstdio>
#include <string>

#include "MarkupText.h"

namespace kez_tools {

namespace {


const char* const kColors[kMethodCount] = {"#1f5fbf", "#c0392b", "#6b6b6b",
                                           "#d9731a", "#2e9e44", "#8e44ad"};
const char* const kDashes[kMethodCount] = {"", "", "6 4", "", "2 3",
                                           "8 3 2 3"};

std::string Label(double v) {
  char b[32];
  std::snprintf(b, sizeof b, "%g", v);
  return b;
}

// A step of 1, 2 or 5 times a power of ten giving about `ticks` ticks.
double NiceStep(double range, int ticks) {
  double raw = range / ticks;
  double p = std::pow(10.0, std::floor(std::log10(raw)));
  double f = raw / p;
  return (f <= 1 ? 1 : f <= 2 ? 2 : f <= 5 ? 5 : 10) * p;
}

struct Panel {
  double x, y, w, h;  // plot area
};

}  // namespace

void WriteErrorChart(std::ostream& out, const LogEvaluation& r,
                     const std::string& title, const std::string& subtitle) {
  const double width = 1000, height = 520;
  const Panel panels[kConditionCount] = {{70, 120, 390, 320},
                                         {580, 120, 390, 320}};
  double x_max = 0, y_max = 0;
  for (const HorizonResult& h : r.horizons) {
    x_max = std::fmax(x_max, h.horizon_ms / 3600000.0);
    for (int c = 0; c < kConditionCount; ++c) {
      for (int m = 0; m < kMethodCount; ++m) {
        double v = h.level[c][m].Mean();
        if (!std::isnan(v)) y_max = std::fmax(y_max, v);
      }
    }
  }
  if (x_max <= 0) x_max = 1;
  if (y_max <= 0) y_max = 1;
  const double y_step = NiceStep(y_max, 5);
  y_max = std::ceil(y_max / y_step) * y_step;
  const double x_step = NiceStep(x_max, 6);
  const double x_top = std::ceil(x_max / x_step) * x_step;

  out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width
      << "\" height=\"" << height << "\" viewBox=\"0 0 " << width << " "
      << height << "\" font-family=\"DejaVu Sans, Arial, sans-serif\">\n";
  out << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n";
  out << "<text x=\"" << width / 2 << "\" y=\"28\" text-anchor=\"middle\" "
         "font-size=\"19\" font-weight=\"bold\">"
      << XmlEscape(title) << "</text>\n";
  out << "<text x=\"" << width / 2 << "\" y=\"50\" text-anchor=\"middle\" "
         "font-size=\"13\" fill=\"#444\">"
      << XmlEscape(subtitle) << "</text>\n";

  // Legend, one row across the top.
  double lx = 120;
  for (int m = 0; m < kMethodCount; ++m) {
    out << "<line x1=\"" << lx << "\" y1=\"76\" x2=\"" << lx + 30
        << "\" y2=\"76\" stroke=\"" << kColors[m] << "\" stroke-width=\""
        << (m == kForecaster || m == kAdaptive ? 3.5 : 2) << "\"";
    if (kDashes[m][0] != '\0') {
      out << " stroke-dasharray=\"" << kDashes[m] << "\"";
    }
    out << "/>\n<circle cx=\"" << lx + 15 << "\" cy=\"76\" r=\"3.5\" fill=\""
        << kColors[m] << "\"/>\n";
    out << "<text x=\"" << lx + 38 << "\" y=\"81\" font-size=\"14\">"
        << MethodTitle(m) << "</text>\n";
    lx += 38 + 9.0 * std::string(MethodTitle(m)).size() + 40;
  }

  for (int c = 0; c < kConditionCount; ++c) {
    const Panel& p = panels[c];
    auto px = [&](double hours) { return p.x + hours / x_top * p.w; };
    auto py = [&](double v) { return p.y + p.h - v / y_max * p.h; };
    out << "<text x=\"" << p.x + p.w / 2 << "\" y=\"" << p.y - 12
        << "\" text-anchor=\"middle\" font-size=\"15\" font-weight=\"bold\">"
        << (c == kFreeForecast ? "Free forecast" : "Not charged")
        << "</text>\n";
    // Grid and axes.
    for (double v = 0; v <= y_max + y_step / 2; v += y_step) {
      out << "<line x1=\"" << p.x << "\" y1=\"" << SvgNumber(py(v)) << "\" x2=\""
          << p.x + p.w << "\" y2=\"" << SvgNumber(py(v))
          << "\" stroke=\"#e3e3e3\"/>\n";
      out << "<text x=\"" << p.x - 8 << "\" y=\"" << SvgNumber(py(v) + 4)
          << "\" text-anchor=\"end\" font-size=\"12\">" << Label(v)
          << "</text>\n";
    }
    for (double hrs = 0; hrs <= x_top + x_step / 2; hrs += x_step) {
      out << "<line x1=\"" << SvgNumber(px(hrs)) << "\" y1=\"" << p.y
          << "\" x2=\"" << SvgNumber(px(hrs)) << "\" y2=\"" << p.y + p.h
          << "\" stroke=\"#eeeeee\"/>\n";
      out << "<text x=\"" << SvgNumber(px(hrs)) << "\" y=\"" << p.y + p.h + 18
          << "\" text-anchor=\"middle\" font-size=\"12\">" << Label(hrs)
          << "</text>\n";
    }
    out << "<rect x=\"" << p.x << "\" y=\"" << p.y << "\" width=\"" << p.w
        << "\" height=\"" << p.h
        << "\" fill=\"none\" stroke=\"#555\"/>\n";
    out << "<text x=\"" << p.x + p.w / 2 << "\" y=\"" << p.y + p.h + 40
        << "\" text-anchor=\"middle\" font-size=\"13\">forecast horizon, "
           "hours</text>\n";
    out << "<text transform=\"translate(" << p.x - 44 << ","
        << p.y + p.h / 2 << ") rotate(-90)\" text-anchor=\"middle\" "
           "font-size=\"13\">mean absolute level error, % points</text>\n";
    // Lines, the forecaster last so that it lies on top.
    for (int i = 0; i < kMethodCount; ++i) {
      const int m = (i + 1) % kMethodCount;
      std::string points;
      auto flush = [&]() {
        if (points.empty()) return;
        out << "<polyline fill=\"none\" stroke=\"" << kColors[m]
            << "\" stroke-width=\"" << (m == kForecaster || m == kAdaptive ? 3.5 : 2) << "\"";
        if (kDashes[m][0] != '\0') {
          out << " stroke-dasharray=\"" << kDashes[m] << "\"";
        }
        out << " points=\"" << points << "\"/>\n";
        points.clear();
      };
      for (const HorizonResult& h : r.horizons) {
        double v = h.level[c][m].Mean();
        if (std::isnan(v)) {
          flush();
          continue;
        }
        double hx = px(h.horizon_ms / 3600000.0), hy = py(v);
        points += SvgNumber(hx) + "," + SvgNumber(hy) + " ";
        out << "<circle cx=\"" << SvgNumber(hx) << "\" cy=\"" << SvgNumber(hy)
            << "\" r=\"3.5\" fill=\"" << kColors[m] << "\"/>\n";
      }
      flush();
    }
    // Pairs per horizon, under the panel.
    size_t least = 0, most = 0;
    bool any = false;
    for (const HorizonResult& h : r.horizons) {
      size_t n = h.level[c][kForecaster].count();
      if (!any || n < least) least = n;
      if (!any || n > most) most = n;
      any = true;
    }
    out << "<text x=\"" << p.x + p.w / 2 << "\" y=\"" << p.y + p.h + 60
        << "\" text-anchor=\"middle\" font-size=\"12\" fill=\"#555\">"
        << (least == most ? std::to_string(most)
                          : std::to_string(least) + " to " +
                                std::to_string(most))
        << " forecasts per horizon</text>\n";
  }
  out << "</svg>\n";
}

}  // namespace kez_tools
