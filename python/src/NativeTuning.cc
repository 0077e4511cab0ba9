// kez._native.tune_weights: the tuner's weight search (kez_tune's
// TuneWeights, the same code kez-tune runs) over logs held by Python, with
// the plan given as a dict of kez-tune's options. The evaluations of each
// generation run on the tuner's own threads, or, when a pair evaluator is
// given, are handed to it: a Python callable that receives the jobs (model,
// part, grid, horizons) and returns one Evaluation per (job, log) pair,
// made by evaluate_pair wherever it likes (kez.fleet runs them on Dask).
// Pooling, scoring and the search itself stay in the tuner.
#include <pybind11/functional.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <cstring>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "Bindings.h"
#include "CommonOptions.h"
#include "EvaluationCodec.h"
#include "ModelEvaluation.h"
#include "ParameterFile.h"
#include "TuneReport.h"
#include "WeightTuner.h"

namespace py = pybind11;

namespace kez_python {

namespace {

using kez_tools::TunePlan;

// A parameter record as bytes: accuracy, the three settings, the weights.
std::string EncodeModel(const vorn::MobilePowerPredictorParameter& p) {
  std::string b(sizeof(double) * 12 + sizeof(int32_t) * 3, '\0');
  char* out = &b[0];
  std::memcpy(out, &p.accuracy, sizeof(double));
  out += sizeof(double);
  for (int32_t s : {p.setting1, p.setting2, p.setting3}) {
    std::memcpy(out, &s, sizeof s);
    out += sizeof s;
  }
  std::memcpy(out, p.weight, sizeof p.weight);
  return b;
}

vorn::MobilePowerPredictorParameter DecodeModel(const std::string& b) {
  vorn::MobilePowerPredictorParameter p;
  if (b.size() != sizeof(double) * 12 + sizeof(int32_t) * 3) {
    throw std::invalid_argument("not an encoded model");
  }
  const char* in = b.data();
  std::memcpy(&p.accuracy, in, sizeof(double));
  in += sizeof(double);
  for (int32_t* s : {&p.setting1, &p.setting2, &p.setting3}) {
    std::memcpy(s, in, sizeof *s);
    in += sizeof *s;
  }
  std::memcpy(p.weight, in, sizeof p.weight);
  return p;
}

double Number(const py::dict& d, const char* key, double lo, double hi) {
  double x = d[key].cast<double>();
  if (!(x >= lo && x <= hi)) {
    std::ostringstream s;
    s << key << " is from " << lo << " to " << hi << ", not " << x;
    throw std::invalid_argument(s.str());
  }
  return x;
}

std::vector<int64_t> Horizons(const py::handle& list, const char* key) {
  std::vector<int64_t> out;
  for (const py::handle& h : list) {
    double hours = h.cast<double>();
    if (!(hours >= 1e-9 && hours <= 720)) {
      throw std::invalid_argument(std::string(key) +
                                  " are from 1/6 to 720 hours");
    }
    int64_t ms = std::llround(hours * kez_tools::kHourMs);
    if (ms % kez_tools::kStepMs != 0) {
      throw std::invalid_argument(std::string(key) + ": " +
                                  py::str(h).cast<std::string>() +
                                  " h is not a whole number of 10-minute steps");
    }
    out.push_back(ms);
  }
  if (out.empty()) throw std::invalid_argument(std::string(key) + ": none given");
  std::sort(out.begin(), out.end());
  out.erase(std::unique(out.begin(), out.end()), out.end());
  return out;
}

// Converted as kez-tune converts its command line.
TunePlan MakePlan(const py::dict& d) {
  TunePlan plan;
  plan.replay.interval_ms =
      std::llround(Number(d, "interval_minutes", 0.1, 60) * kez_tools::kMinuteMs);
  plan.replay.max_silence_ms = std::llround(
      Number(d, "max_silence_hours", 0, 24 * 366) * kez_tools::kHourMs);
  plan.replay.as_logged = d["as_logged"].cast<bool>();
  plan.warmup_ms = std::llround(Number(d, "warmup_days", 0, 365) * 24 *
                                kez_tools::kHourMs);
  plan.split = Number(d, "split", 0.01, 1);
  plan.search_every_ms = std::llround(
      Number(d, "every_hours", 1.0 / 60, 24 * 7) * kez_tools::kHourMs);
  plan.final_every_ms = std::llround(
      Number(d, "final_every_hours", 1.0 / 60, 24 * 7) * kez_tools::kHourMs);
  plan.objective_horizons_ms = Horizons(d["horizons_hours"], "horizons_hours");
  plan.report_horizons_ms =
      Horizons(d["report_horizons_hours"], "report_horizons_hours");
  plan.seed = d["seed"].cast<uint64_t>();
  plan.generations = static_cast<int>(Number(d, "generations", 0, 1000000));
  plan.seconds = Number(d, "seconds", 0, 1e7);
  plan.threads = static_cast<int>(Number(d, "threads", 1, 256));
  std::string error;
  if (!kez_tools::CheckPlan(plan, &error)) throw std::invalid_argument(error);
  return plan;
}

kez_tools::WeightSearchOptions MakeSearch(const py::dict& d) {
  kez_tools::WeightSearchOptions o;
  o.offspring = static_cast<int>(Number(d, "offspring", 1, 1000));
  o.parents = static_cast<int>(Number(d, "parents", 1, 1000));
  o.initial_step = Number(d, "step", kez_tools::kMinStep, kez_tools::kMaxStep);
  o.mutation_share = Number(d, "share", 0.01, 1);
  std::string error;
  if (!kez_tools::CheckSearchOptions(o, &error)) {
    throw std::invalid_argument(error);
  }
  return o;
}

// A job for Python: (model bytes, part, every_ms, horizons_ms).
py::tuple JobTuple(const kez_tools::ModelJob& job) {
  return py::make_tuple(py::bytes(EncodeModel(job.model)),
                        static_cast<int>(job.part), job.every_ms,
                        job.horizons_ms);
}

kez_tools::ModelJob JobFromTuple(const py::tuple& t) {
  if (t.size() != 4) throw std::invalid_argument("not a tuning job");
  kez_tools::ModelJob job;
  job.model = DecodeModel(t[0].cast<std::string>());
  const int part = t[1].cast<int>();
  if (part != kez_tools::kTuningPart && part != kez_tools::kHeldOutPart) {
    throw std::invalid_argument("not a tuning job");
  }
  job.part = static_cast<kez_tools::Part>(part);
  job.every_ms = t[2].cast<int64_t>();
  job.horizons_ms = t[3].cast<std::vector<int64_t>>();
  return job;
}

// One (job, log) pair, as the tuner evaluates it; as bytes (EvaluationCodec).
py::bytes EvaluatePair(const PyLog& log, const py::dict& plan_dict,
                       const py::tuple& job_tuple) {
  const TunePlan plan = MakePlan(plan_dict);
  const kez_tools::ModelJob job = JobFromTuple(job_tuple);
  kez_tools::LogEvaluation result;
  std::string error;
  bool ok;
  {
    py::gil_scoped_release release;
    ok = kez_tools::EvaluatePair(log.log, plan, job, &result, &error);
  }
  if (!ok) throw std::runtime_error(log.log.source + ": " + error);
  return py::bytes(kez_tools::EncodeEvaluation(result));
}

py::dict ModelResultDict(const kez_tools::ModelResult& r) {
  py::dict d;
  d["score"] = r.score;
  d["pooled"] = py::bytes(kez_tools::EncodeEvaluation(r.pooled));
  py::list logs;
  for (const auto& l : r.logs) logs.append(py::bytes(kez_tools::EncodeEvaluation(l)));
  d["logs"] = logs;
  return d;
}

py::dict Tune(const std::vector<const PyLog*>& py_logs, const py::dict& plan_dict,
              const py::dict& search_dict, const std::string& start_path,
              const py::object& progress, const py::object& evaluator) {
  if (py_logs.empty()) throw std::invalid_argument("no log given");
  const TunePlan plan = MakePlan(plan_dict);
  const kez_tools::WeightSearchOptions search = MakeSearch(search_dict);
  vorn::MobilePowerPredictorParameter start;
  std::string error;
  if (!start_path.empty() &&
      !kez_tools::LoadParameterFile(start_path, &start, &error)) {
    throw std::invalid_argument(error);
  }
  std::vector<kez_tools::Log> logs;
  for (const PyLog* l : py_logs) logs.push_back(l->log);

  // A Python exception raised in a callback ends the search and is raised
  // again here.
  std::unique_ptr<py::error_already_set> raised;
  std::function<void(const kez_tools::WeightGeneration&)> on_generation;
  if (!progress.is_none()) {
    on_generation = [&](const kez_tools::WeightGeneration& g) {
      py::gil_scoped_acquire hold;
      if (raised) return;
      try {
        py::dict d;
        d["generation"] = g.generation;
        d["evaluations"] = g.evaluations;
        d["start_score"] = g.start_score;
        d["best_score"] = g.best_score;
        d["best_step"] = g.best_step;
        d["elapsed_seconds"] = g.elapsed_seconds;
        progress(d);
      } catch (py::error_already_set& e) {
        raised = std::make_unique<py::error_already_set>(std::move(e));
      }
    };
  }
  kez_tools::PairEvaluator pairs;
  if (!evaluator.is_none()) {
    pairs = [&](const std::vector<kez_tools::ModelJob>& jobs,
                std::vector<kez_tools::LogEvaluation>* out, std::string* err) {
      py::gil_scoped_acquire hold;
      if (raised) {
        *err = "stopped";
        return false;
      }
      try {
        py::list job_list;
        for (const auto& j : jobs) job_list.append(JobTuple(j));
        py::list results = evaluator(job_list);
        out->assign(py::len(results), kez_tools::LogEvaluation());
        for (size_t i = 0; i < out->size(); ++i) {
          if (!kez_tools::DecodeEvaluation(results[i].cast<std::string>(),
                                           &(*out)[i], err)) {
            return false;
          }
        }
        return true;
      } catch (py::error_already_set& e) {
        raised = std::make_unique<py::error_already_set>(std::move(e));
        *err = "stopped";
        return false;
      }
    };
  }
  kez_tools::WeightTuneResult result;
  bool ok;
  {
    py::gil_scoped_release release;
    ok = kez_tools::TuneWeights(logs, start, plan, search, on_generation,
                                &result, &error, pairs);
  }
  if (raised) throw *raised;
  if (!ok) throw std::runtime_error(error);

  kez_tools::ReportContext context;
  context.version = kez_tools::LibraryVersion();
  context.start_name = start_path.empty() ? "built-in model" : start_path;
  context.logs = &logs;
  context.plan = plan;
  std::ostringstream report;
  kez_tools::WriteWeightReport(report, context, result);

  py::dict d;
  d["start_weights"] = std::vector<double>(result.start.begin(), result.start.end());
  d["best_weights"] = std::vector<double>(result.best.begin(), result.best.end());
  d["start_search_score"] = result.start_search_score;
  d["best_search_score"] = result.best_search_score;
  d["start_kept"] = result.start_kept;
  d["generations"] = result.generations;
  d["evaluations"] = result.evaluations;
  d["seconds"] = result.seconds;
  d["start_tuning"] = ModelResultDict(result.start_tuning);
  d["best_tuning"] = ModelResultDict(result.best_tuning);
  d["start_heldout"] = ModelResultDict(result.start_heldout);
  d["best_heldout"] = ModelResultDict(result.best_heldout);
  d["model"] = py::bytes(EncodeModel(result.parameter));
  d["report"] = report.str();
  return d;
}

// Writes a model as the tuner saves it, and checks that it reads back.
void SaveModel(const py::bytes& model, const std::string& path) {
  const vorn::MobilePowerPredictorParameter p = DecodeModel(model);
  std::remove(path.c_str());
  p.SaveToFile(path.c_str());
  vorn::MobilePowerPredictorParameter check;
  std::string error;
  if (!kez_tools::LoadParameterFile(path, &check, &error)) {
    throw std::runtime_error("cannot write the parameter file " + path);
  }
  for (int i = 0; i < vorn::MobilePowerPredictorParameter::kWeightCount; ++i) {
    if (check.weight[i] != p.weight[i]) {
      throw std::runtime_error(path + ": the written weights do not read back");
    }
  }
}

}  // namespace

void BindTuning(py::module_& m) {
  m.def("tune_weights", &Tune, py::arg("logs"), py::arg("plan"),
        py::arg("search"), py::arg("start_model"), py::arg("progress"),
        py::arg("evaluator"));
  m.def("evaluate_pair", &EvaluatePair, py::arg("log"), py::arg("plan"),
        py::arg("job"));
  m.def("check_plan", [](const py::dict& plan, const py::dict& search) {
    MakePlan(plan);
    MakeSearch(search);
  });
  m.def("save_model", &SaveModel, py::arg("model"), py::arg("path"));
}

}  // namespace kez_python
