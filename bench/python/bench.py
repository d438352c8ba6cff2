"""Measures what the Python module should reach, beside the same in C++.

PYTHONPATH=build/release/lib/python3/dist-packages python3 bench/python/bench.py build/release/bin/marlet_sampling_loop
"""

import pathlib
import subprocess
import sys
import tempfile
import timeit

import numpy

import marlet


def scene():
    project = marlet.new("Bench")
    return project, project.add_composition("Main", frames=1000).add_point("Layer")


def sampling(loop):
    project, layer = scene()
    turn = layer.properties["rotationZ"]
    turn.key_frames.assign(numpy.arange(0, 10000, 100), 50 + 50 * numpy.sin(numpy.arange(100)))
    turn.key_frames.ease("ease-in-out")
    times = numpy.arange(0, 10000, 10)
    with tempfile.TemporaryDirectory() as folder:
        path = pathlib.Path(folder) / "bench.xml"
        project.save(path)
        # In turns, so that what else the machine does is the same for both.
        bare, ours = [], []
        for _ in range(5):
            bare.append(float(subprocess.run([loop, path], check=True, capture_output=True, text=True).stdout))
            ours += timeit.repeat(lambda: turn.sample(times), number=1, repeat=200)
    ratio = min(ours) * 1e6 / min(bare)
    print(f"1,000 values of a property: {min(ours) * 1e6:.1f} us, in C++ {min(bare):.1f} us: {ratio:.2f} x (to reach: 1.5 x)")
    return ratio <= 1.5


def iterating():
    project, layer = scene()
    keys = layer.properties["rotationX"].key_frames
    keys.assign(numpy.arange(100_000), numpy.zeros(100_000))

    def walk():
        total = 0
        for key in keys:
            total += key.time + key.value
        return total

    took = min(timeit.repeat(walk, number=1, repeat=5))
    print(f"a walk over 100,000 key frames, their times and values: {took:.3f} s (to reach: 0.3 s)")
    return took <= 0.3


if __name__ == "__main__":
    reached = [sampling(sys.argv[1]), iterating()]
    sys.exit(0 if all(reached) else 1)
