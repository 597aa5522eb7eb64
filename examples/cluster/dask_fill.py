#!/usr/bin/env python3
"""Fills a form for every row of a table on the workers of a Dask cluster, in chunks of rows that may fail and be repeated.

Without --scheduler a cluster of processes on this machine does it. Form, rows, outputs and manifests must have the same paths
on all workers. Repeating a command goes on by the manifests. Exits as formwork fill does: 0 when all rows are done, 3 when some were
refused, 1 when chunks failed for good.

    dask_fill.py form.pdf rows.csv 'out/{row:08}.pdf' --scheduler tcp://head:8786 -- --scripts all
"""
import argparse
import collections
import ctypes
import os
import pathlib
import signal
import subprocess
import sys

REFUSED_SOME = 3


def end_with_parent():
    """In the child: a worker that is killed takes its command along, so that no two of them do one chunk."""
    pr_set_pdeathsig = 1
    ctypes.CDLL(None).prctl(pr_set_pdeathsig, signal.SIGKILL)


def fill_chunk(command, manifest, first, last):
    """Fills some rows. Raises when that is to be tried again; rows that were refused are no reason for it."""
    done = subprocess.run([*command, "--rows", f"{first}-{last}", "--manifest", manifest, "--resume"], check=False,
                          stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True,
                          errors="replace", preexec_fn=end_with_parent)
    if done.returncode not in (0, REFUSED_SOME):
        raise RuntimeError(f"rows {first} to {last}: exit {done.returncode}: {done.stderr[-2000:]}")
    return done.returncode


def lines_of(path):
    """A table has no more rows than lines, whose ends may be CR; chunks behind the last row find nothing to do."""
    with open(path, "rb") as file:
        return sum(block.count(b"\n") + block.count(b"\r") for block in iter(lambda: file.read(1 << 20), b"")) + 1


def arguments():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("form")
    parser.add_argument("rows")
    parser.add_argument("pattern")
    parser.add_argument("options", nargs="*", help="of formwork fill, behind --")
    parser.add_argument("--scheduler", help="address of the cluster")
    parser.add_argument("--workers", type=int, default=os.cpu_count(), help="of a cluster on this machine")
    parser.add_argument("--chunk", type=int, default=1000, help="rows of a chunk")
    parser.add_argument("--manifests", type=pathlib.Path, help="folder; manifests beside the outputs by default")
    parser.add_argument("--formwork", default="formwork", help="the command")
    return parser.parse_args()


def main():
    options = arguments()
    from distributed import Client, LocalCluster, as_completed

    manifests = (options.manifests or pathlib.Path(options.pattern).parent / "manifests").resolve()
    manifests.mkdir(parents=True, exist_ok=True)
    command = [options.formwork, "fill", os.path.abspath(options.form), "--batch", os.path.abspath(options.rows), "-o",
               os.path.abspath(options.pattern), *options.options]
    cluster = options.scheduler or LocalCluster(n_workers=options.workers, threads_per_worker=1, processes=True,
                                                dashboard_address=None)
    ends = collections.Counter()
    with Client(cluster) as client:
        futures = []
        for first in range(1, lines_of(options.rows) + 1, options.chunk):
            last = first + options.chunk - 1
            futures.append(client.submit(fill_chunk, command, str(manifests / f"{first}-{last}.jsonl"), first, last,
                                         pure=False, retries=3))
        for future in as_completed(futures):
            if future.status == "error":
                print(f"dask_fill.py: {future.exception()}", file=sys.stderr)
            ends[future.result() if future.status == "finished" else "failed"] += 1
    if not options.scheduler:
        cluster.close()
    sys.exit(1 if ends["failed"] else REFUSED_SOME if ends[REFUSED_SOME] else 0)


if __name__ == "__main__":
    main()
