// kez-simulate: writes a realistic synthetic phone battery log (weeks of a
// daily routine, reported as a host app reports) as CSV or status lines.
// The same options always give the same file. See docs/TOOLS.md.
#include <sys/stat.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

#include "CivilTime.h"
#include "CliArgs.h"
#include "DisplayZone.h"
#include "LogWriter.h"
#include "SimFleet.h"
#include "SimProfile.h"
#include "Simulator.h"
#include "TimeText.h"

namespace {

const char kUsage[] =
    "usage: kez-simulate [options] [-o FILE]\n"
    "\n"
    "Writes a synthetic phone battery log: weeks of a daily routine (sleep,\n"
    "use, overnight charging, missed charges, top-ups, the phone off now and\n"
    "then), reported every few minutes as a host app does. Same options, same\n"
    "file.\n"
    "\n"
    "options:\n"
    "  --days N          days to simulate (default 35)\n"
    "  --seed N          random seed (default 1)\n"
    "  --start DATE      first day, YYYY-MM-DD (default 2024-03-04)\n"
    "  --profile NAME    routine: regular, shift, heavy, light (default\n"
    "                    regular); --list-profiles describes them\n"
    "  --interval MIN    minutes between reports, 1 to 10 (default 5)\n"
    "  --tz-offset HOURS wall clock of the routine, hours from UTC (default 0)\n"
    "  --format F        csv (default) or status (the host's status lines)\n"
    "  -o, --output FILE write to FILE instead of standard output\n"
    "  --users N         a fleet: N users with their own routines, phones,\n"
    "                    seasons and time zones, all from --seed, written\n"
    "                    into the folder -o DIR as user-0001.csv ... and\n"
    "                    fleet.csv (one line per user: what was drawn)\n"
    "  --list-profiles   list the routines and exit\n"
    "  -h, --help        this text\n"
    "\n"
    "example: kez-simulate --days 35 --seed 7 -o week5.csv\n"
    "         kez-simulate --users 200 --days 60 --seed 3 -o fleet\n";

int Usage(const std::string& error) {
  std::cerr << "kez-simulate: " << error << "\n"
            << "run kez-simulate --help for the options\n";
  return 2;
}

bool WriteLog(const std::string& path, const kez_tools::Log& log,
              const std::string& format, int tz_offset_minutes) {
  std::ofstream file(path, std::ios::binary);
  if (!file) return false;
  if (format == "csv") {
    kez_tools::WriteCsv(file, log);
  } else {
    kez_tools::WriteStatusLines(
        file, log, kez_tools::DisplayZone::FixedOffset(tz_offset_minutes));
  }
  file.flush();
  return static_cast<bool>(file);
}

// Users 1..users of the fleet `seed` into `dir`.
int WriteFleet(const std::string& dir, int users, int days, uint64_t seed,
               const std::string& format) {
  if (mkdir(dir.c_str(), 0777) != 0 && errno != EEXIST) {
    std::cerr << "kez-simulate: cannot create the folder " << dir << "\n";
    return 1;
  }
  std::ofstream list(dir + "/fleet.csv", std::ios::binary);
  list << kez_tools::FleetHeader() << "\n";
  for (int i = 1; i <= users; ++i) {
    const kez_tools::FleetUser user = kez_tools::MakeFleetUser(seed, i, days);
    const std::string path =
        dir + "/" + user.name + (format == "csv" ? ".csv" : ".txt");
    if (!WriteLog(path, kez_tools::Simulate(user.options), format,
                  user.options.tz_offset_minutes)) {
      std::cerr << "kez-simulate: cannot write " << path << "\n";
      return 1;
    }
    list << kez_tools::FleetLine(user) << "\n";
  }
  list.flush();
  if (!list) {
    std::cerr << "kez-simulate: cannot write " << dir << "/fleet.csv\n";
    return 1;
  }
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  using namespace kez_tools;
  if (argc < 2) {
    std::cerr << kUsage;
    return 2;
  }
  CliArgs args(argc, argv);
  SimOptions options;
  FindSimProfile("regular", &options.profile);
  std::string output, format = "csv", error;
  int users = 0;
  bool single_user_option = false;
  while (!args.Done()) {
    std::string a = args.Take();
    int64_t n;
    std::string v;
    if (a == "-h" || a == "--help") {
      std::cout << kUsage;
      return 0;
    } else if (a == "--list-profiles") {
      for (const SimProfile& p : SimProfiles()) {
        std::cout << p.name << std::string(10 - p.name.size(), ' ')
                  << p.description << "\n";
      }
      return 0;
    } else if (a == "--users") {
      if (!args.Int(a, 1, 100000, &n, &error)) return Usage(error);
      users = static_cast<int>(n);
    } else if (a == "--days") {
      if (!args.Int(a, 1, 3650, &n, &error)) return Usage(error);
      options.days = static_cast<int>(n);
    } else if (a == "--seed") {
      if (!args.Int(a, 0, INT64_MAX, &n, &error)) return Usage(error);
      options.seed = static_cast<uint64_t>(n);
    } else if (a == "--start") {
      single_user_option = true;
      if (!args.Value(a, &v, &error)) return Usage(error);
      int64_t ms;
      if (v.size() != 10 || !ParseMoment(v, DisplayZone::Utc(), &ms, &error)) {
        return Usage("--start takes a date YYYY-MM-DD, not '" + v + "'");
      }
      options.start_day = FloorDiv(ms, 86400000);
    } else if (a == "--profile") {
      single_user_option = true;
      if (!args.Value(a, &v, &error)) return Usage(error);
      if (!FindSimProfile(v, &options.profile)) {
        return Usage("unknown profile '" + v +
                     "' (regular, shift, heavy, light)");
      }
    } else if (a == "--interval") {
      if (!args.Int(a, 1, 10, &n, &error)) return Usage(error);
      options.interval_minutes = static_cast<int>(n);
    } else if (a == "--tz-offset") {
      single_user_option = true;
      double hours;
      if (!args.Number(a, -14, 14, &hours, &error)) return Usage(error);
      options.tz_offset_minutes = static_cast<int>(std::lround(hours * 60));
    } else if (a == "--format") {
      if (!args.Value(a, &format, &error)) return Usage(error);
      if (format != "csv" && format != "status") {
        return Usage("--format is csv or status, not '" + format + "'");
      }
    } else if (a == "-o" || a == "--output") {
      if (!args.Value(a, &output, &error)) return Usage(error);
    } else {
      return Usage("unknown argument '" + a + "'");
    }
  }

  if (users > 0) {
    if (single_user_option) {
      return Usage("--users draws each user's routine, start and time zone; "
                   "--profile, --start and --tz-offset are for one user");
    }
    if (output.empty() || output == "-") {
      return Usage("--users needs a folder: -o DIR");
    }
    return WriteFleet(output, users, options.days, options.seed, format);
  }

  Log log = Simulate(options);
  std::ofstream file;
  if (!output.empty() && output != "-") {
    file.open(output, std::ios::binary);
    if (!file) {
      std::cerr << "kez-simulate: cannot write " << output << "\n";
      return 1;
    }
  }
  std::ostream& out = file.is_open() ? file : std::cout;
  if (format == "csv") {
    WriteCsv(out, log);
  } else {
    WriteStatusLines(out, log,
                     DisplayZone::FixedOffset(options.tz_offset_minutes));
  }
  out.flush();
  if (!out) {
    std::cerr << "kez-simulate: write error"
              << (output.empty() ? "" : " on " + output) << "\n";
    return 1;
  }
  return 0;
}
