"""kez.tune is kez-tune's search (the same report and model for the same
seed), and kez.fleet.tune on two worker processes finds the same result as
the tuner's own threads."""

import re

import pytest

import kez
from conftest import BUNDLED, tool

SMALL = dict(generations=2, offspring=4, parents=2, every_hours=6)


def untimed(text):
    return re.sub(r"[0-9]+(\.[0-9]+)? s(econds)?\b", "T s", text)


def test_tune_is_kez_tune(tmp_path):
    expected = tool("kez-tune", "--quiet", "--generations", "2", "--offspring", "4",
                    "--parents", "2", "--every", "6", "--out", "tuned.txt",
                    BUNDLED, cwd=tmp_path)
    generations = []
    result = kez.tune(BUNDLED, progress=generations.append, **SMALL)
    assert expected.startswith(untimed(result.report)) or \
        untimed(expected).startswith(untimed(result.report))
    assert [g["generation"] for g in generations] == [0, 1, 2]
    result.save(tmp_path / "python.txt")
    assert (tmp_path / "python.txt").read_bytes() == (tmp_path / "tuned.txt").read_bytes()
    assert result.best_tuning.score <= result.start_tuning.score


def test_fleet_tune_on_workers_is_the_same_search(cluster, tmp_path):
    table = kez.simulate_fleet(3, tmp_path, days=16, seed=5)
    options = dict(generations=1, offspring=3, parents=2, every_hours=8,
                   final_every_hours=4, warmup_days=5)
    here = kez.tune(list(table["path"]), **options)
    there = kez.fleet.tune(list(table["path"]), client=cluster, **options)
    assert there.best_weights == here.best_weights
    assert there.evaluations == here.evaluations
    assert untimed(there.report) == untimed(here.report)
    assert there.best_heldout.to_json() == here.best_heldout.to_json()


def test_tune_arguments_are_checked():
    with pytest.raises(ValueError, match="split"):
        kez.tune(BUNDLED, split=2)
    with pytest.raises(TypeError):
        kez.tune(BUNDLED, generations="many")
    with pytest.raises(FileNotFoundError):
        kez.fleet.tune(["/nonexistent/log.csv"])
