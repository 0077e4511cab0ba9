// The weight search end to end on a small simulated log: reproducible on any
// number of threads, never worse than its start on the tuning part, weights
// kept above the floor and exactly as the parameter file stores them, and a
// written file that is the model that was measured.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <string>
#include <vector>

#include "EvaluationCodec.h"
#include "ModelEvaluation.h"
#include "ParameterFile.h"
#include "SmallTuneSetup.h"
#include "WeightTuner.h"
#include "support/ScopedTempDir.h"

namespace kez_tools {
namespace {

const std::vector<kez_tools::Log>& SmallLogs() {
  static const std::vector<kez_tools::Log> logs = SmallSimulatedLogs(5);
  return logs;
}

TunePlan SmallPlan() { return SmallTunePlan(3, 11); }

WeightSearchOptions SmallSearch() {
  WeightSearchOptions o;
  o.parents = 2;
  o.offspring = 4;
  return o;
}

struct TuneRun {
  WeightTuneResult result;
  std::vector<WeightGeneration> generations;
};

TuneRun Tune(const TunePlan& plan, const WeightSearchOptions& search,
         const vorn::MobilePowerPredictorParameter& start =
             vorn::MobilePowerPredictorParameter(),
         const PairEvaluator& evaluate_pairs = PairEvaluator()) {
  TuneRun run;
  std::string error;
  EXPECT_TRUE(TuneWeights(
      SmallLogs(), start, plan, search,
      [&](const WeightGeneration& g) { run.generations.push_back(g); },
      &run.result, &error, evaluate_pairs))
      << error;
  return run;
}

TEST(WeightTunerTest, SameSeedGivesTheSameSearchOnOneOrTwoThreads) {
  TunePlan plan = SmallPlan();
  plan.threads = 1;
  const TuneRun one = Tune(plan, SmallSearch());
  plan.threads = 2;
  const TuneRun two = Tune(plan, SmallSearch());

  ASSERT_EQ(one.generations.size(), two.generations.size());
  for (size_t g = 0; g < one.generations.size(); ++g) {
    EXPECT_EQ(one.generations[g].candidates, two.generations[g].candidates);
    EXPECT_EQ(one.generations[g].best_score, two.generations[g].best_score);
  }
  EXPECT_EQ(one.result.best, two.result.best);
  EXPECT_EQ(one.result.evaluations, two.result.evaluations);
  EXPECT_EQ(one.result.best_tuning.score, two.result.best_tuning.score);
  EXPECT_EQ(one.result.best_heldout.score, two.result.best_heldout.score);

  // Another seed searches elsewhere.
  plan.seed = 12;
  const TuneRun other = Tune(plan, SmallSearch());
  EXPECT_NE(one.generations[1].candidates, other.generations[1].candidates);
}

// Evaluations handed out (as the Python package hands them to other
// processes: each pair alone, moved as bytes, returned in reverse order of
// completion) leave the search as it was.
TEST(WeightTunerTest, EvaluationsMadeElsewhereGiveTheSameSearch) {
  const TuneRun here = Tune(SmallPlan(), SmallSearch());
  size_t handed = 0;
  PairEvaluator elsewhere = [&](const std::vector<ModelJob>& jobs,
                                std::vector<LogEvaluation>* out,
                                std::string* error) {
    const size_t logs = SmallLogs().size();
    out->assign(jobs.size() * logs, LogEvaluation());
    for (size_t i = jobs.size() * logs; i-- > 0;) {
      LogEvaluation made;
      if (!EvaluatePair(SmallLogs()[i % logs], SmallPlan(), jobs[i / logs],
                        &made, error) ||
          !DecodeEvaluation(EncodeEvaluation(made), &(*out)[i], error)) {
        return false;
      }
    }
    handed += jobs.size();
    return true;
  };
  const TuneRun there = Tune(SmallPlan(), SmallSearch(),
                             vorn::MobilePowerPredictorParameter(), elsewhere);
  // Every model judged went through the evaluator: the search's and the
  // four final ones.
  EXPECT_EQ(handed, here.result.evaluations + 4);
  ASSERT_EQ(here.generations.size(), there.generations.size());
  for (size_t g = 0; g < here.generations.size(); ++g) {
    EXPECT_EQ(here.generations[g].candidates, there.generations[g].candidates);
  }
  EXPECT_EQ(here.result.best, there.result.best);
  EXPECT_EQ(here.result.best_tuning.score, there.result.best_tuning.score);
  EXPECT_EQ(here.result.best_heldout.score, there.result.best_heldout.score);

  // A failing evaluator stops the search with its message.
  WeightTuneResult result;
  std::string error;
  EXPECT_FALSE(TuneWeights(
      SmallLogs(), vorn::MobilePowerPredictorParameter(), SmallPlan(),
      SmallSearch(), nullptr, &result, &error,
      [](const std::vector<ModelJob>&, std::vector<LogEvaluation>*,
         std::string* e) {
        *e = "worker lost";
        return false;
      }));
  EXPECT_EQ(error, "worker lost");
}

TEST(WeightTunerTest, NeverEndsWorseThanTheStartOnTheTuningPart) {
  const TuneRun run = Tune(SmallPlan(), SmallSearch());
  const WeightTuneResult& r = run.result;
  EXPECT_EQ(3, r.generations);
  EXPECT_EQ(4u, run.generations.size());  // generation 0 is the start alone
  EXPECT_LE(r.best_search_score, r.start_search_score);
  EXPECT_LE(r.best_tuning.score, r.start_tuning.score);
  if (r.start_kept) {
    EXPECT_EQ(r.start, r.best);
  }
  // The best so far never gets worse from one generation to the next.
  for (size_t g = 1; g < run.generations.size(); ++g) {
    EXPECT_LE(run.generations[g].best_score, run.generations[g - 1].best_score);
  }
  // Both parts were judged on forecasts, at every report horizon.
  for (const ModelResult* m : {&r.best_tuning, &r.best_heldout}) {
    ASSERT_FALSE(std::isnan(m->score));
    for (const kez_tools::HorizonResult& h : m->pooled.horizons) {
      EXPECT_GT(h.pairs, 0u) << h.horizon_ms;
    }
  }
  EXPECT_EQ(r.best_tuning.score, r.parameter.accuracy);
}

TEST(WeightTunerTest, WrittenParameterFileIsTheModelThatWasMeasured) {
  const TunePlan plan = SmallPlan();
  const TuneRun run = Tune(plan, SmallSearch());
  const WeightTuneResult& r = run.result;
  const kez_testing::ScopedTempDir dir;
  const std::string path = dir.File("weights.txt");
  r.parameter.SaveToFile(path.c_str());  // the weights read back below

  vorn::MobilePowerPredictorParameter loaded;
  loaded.accuracy = -1;
  loaded.LoadFromFile(path.c_str());
  for (int i = 0; i < kWeightCount; ++i) {
    EXPECT_EQ(r.best[i], loaded.weight[i]) << i;
    EXPECT_NEAR(r.best[i], loaded.weight[i], 5e-7) << i;
  }
  EXPECT_NEAR(r.parameter.accuracy, loaded.accuracy, 1e-10);
  std::string error;
  EXPECT_TRUE(kez_tools::LoadParameterFile(path, &loaded, &error)) << error;

  // Judging the loaded file on the held-out part gives the reported figure.
  ModelJob job;
  job.model = loaded;
  job.part = kHeldOutPart;
  job.every_ms = plan.final_every_ms;
  job.horizons_ms = FinalHorizons(plan);
  std::vector<ModelResult> again;
  ASSERT_TRUE(EvaluateModels(SmallLogs(), plan, {job}, &again, &error))
      << error;
  EXPECT_EQ(r.best_heldout.score, again[0].score);
}

TEST(WeightTunerTest, WeightsStayAboveTheFloorAndAsTheFileStoresThem) {
  EXPECT_EQ(StoredWeight(1e-5), StoredWeight(0.0));
  EXPECT_GE(StoredWeight(0.0), kWeightFloor);
  EXPECT_EQ(-StoredWeight(1e-5), StoredWeight(-1e-9));
  EXPECT_EQ(StoredWeight(1e-5), StoredWeight(std::nan("")));
  EXPECT_EQ(0.000015, StoredWeight(0.0000149));
  EXPECT_EQ(277.591529, StoredWeight(277.5915291));
  EXPECT_EQ(kWeightCeiling, StoredWeight(1e12));

  // A start at the floor with the largest steps, every weight moved.
  vorn::MobilePowerPredictorParameter start;
  for (int i = 2; i < kWeightCount; ++i) start.weight[i] = 2e-5;
  WeightSearchOptions search = SmallSearch();
  search.initial_step = kMaxStep;
  search.mutation_share = 1.0;
  TunePlan plan = SmallPlan();
  plan.generations = 2;
  const TuneRun run = Tune(plan, search, start);
  size_t seen = 0;
  for (const WeightGeneration& g : run.generations) {
    for (const Weights& w : g.candidates) {
      for (double x : w) {
        EXPECT_GE(std::fabs(x), kWeightFloor);
        EXPECT_LE(std::fabs(x), kWeightCeiling);
        EXPECT_EQ(StoredWeight(x), x);
        ++seen;
      }
    }
  }
  EXPECT_GT(seen, 0u);
}

TEST(WeightTunerTest, MutationKeepsSignsAndMovesAtLeastOneWeight) {
  WeightIndividual parent;
  for (int i = 0; i < kWeightCount; ++i) {
    parent.weights[i] = i % 2 == 0 ? 1.5 : -0.75;
  }
  WeightSearchOptions search;
  search.mutation_share = 0.01;  // mostly the one weight that must move
  SeededRandom random(3);
  for (int n = 0; n < 200; ++n) {
    const WeightIndividual child = MakeOffspring({parent}, search, random);
    int moved = 0;
    for (int i = 0; i < kWeightCount; ++i) {
      EXPECT_EQ(std::signbit(parent.weights[i]), std::signbit(child.weights[i]));
      if (child.weights[i] != parent.weights[i]) ++moved;
    }
    EXPECT_GE(moved, 1);
    EXPECT_GE(child.step, kMinStep);
    EXPECT_LE(child.step, kMaxStep);
  }
}

TEST(WeightTunerTest, RefusesWhatCannotBeTuned) {
  std::string error;
  WeightTuneResult result;
  TunePlan plan = SmallPlan();
  plan.warmup_ms = 20 * kez_tools::kDayMs;
  EXPECT_FALSE(TuneWeights(SmallLogs(), vorn::MobilePowerPredictorParameter(),
                           plan, SmallSearch(), nullptr, &result, &error));
  EXPECT_NE(std::string::npos, error.find("sim-12d: the log spans")) << error;

  plan = SmallPlan();
  plan.generations = 0;
  plan.seconds = 0;
  EXPECT_FALSE(TuneWeights(SmallLogs(), vorn::MobilePowerPredictorParameter(),
                           plan, SmallSearch(), nullptr, &result, &error));
  EXPECT_NE(std::string::npos, error.find("no budget")) << error;

  EXPECT_FALSE(TuneWeights({}, vorn::MobilePowerPredictorParameter(),
                           SmallPlan(), SmallSearch(), nullptr, &result,
                           &error));
}

}  // namespace
}  // namespace kez_tools
