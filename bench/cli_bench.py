#!/usr/bin/env python3
"""End-to-end speed of `kestrel search` against grep (and ripgrep when it is
installed) on the same corpus and queries, and kestrel's peak memory on one
1 GiB file. Run by `make bench-cli`:

    cli_bench.py KESTREL SCRATCH [--mb 300] [--big-mb 1024] [--runs 3]

The corpus is built once in SCRATCH from text found on the machine (the
repository's sample corpus, the licences and the package documentation,
compressed or not): lines drawn at random, with a fixed seed, into files of
about 300 KB. Every timing is the best of --runs runs with the page cache
warm; throughput is corpus bytes per second, of wall time and of processor
time (user and system: on a shared machine the wall time varies with the
load of others)."""

import argparse
import glob
import gzip
import os
import random
import shutil
import subprocess
import sys
import time

REPO = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
FILE_BYTES = 300 * 1024


def source_lines():
    """Lines of real text, UTF-8, without the blank ones."""
    names = glob.glob(os.path.join(REPO, "corpus", "**", "*.txt"), recursive=True)
    names += glob.glob("/usr/share/common-licenses/*")
    names += glob.glob("/usr/share/doc/*/copyright")
    names += glob.glob("/usr/share/doc/*/*.gz")
    lines = []
    for name in sorted(names):
        try:
            opener = gzip.open if name.endswith(".gz") else open
            with opener(name, "rb") as f:
                data = f.read(4 << 20)
            text = data.decode("utf-8")
        except (OSError, UnicodeDecodeError, EOFError):
            continue
        lines += [l for l in text.splitlines() if l.strip()]
    return lines


def write_text(path, lines, rng, size):
    with open(path, "wb") as f:
        written = 0
        while written < size:
            chunk = ("\n".join(rng.choice(lines) for _ in range(2000)) + "\n").encode("utf-8")
            f.write(chunk)
            written += len(chunk)


def build_corpus(scratch, mb, big_mb):
    corpus = os.path.join(scratch, "corpus")
    big = os.path.join(scratch, "big", "big.txt")
    stamp = os.path.join(scratch, f"built-{mb}-{big_mb}")
    if os.path.exists(stamp):
        return corpus, big
    shutil.rmtree(scratch, ignore_errors=True)
    os.makedirs(corpus)
    os.makedirs(os.path.dirname(big))
    lines = source_lines()
    rng = random.Random(20261123)
    print(f"building {mb} MB of text from {len(lines)} lines found on the machine...",
          flush=True)
    for i in range(mb * 1024 * 1024 // FILE_BYTES):
        write_text(os.path.join(corpus, f"text{i:04d}.txt"), lines, rng, FILE_BYTES)
    write_text(big, lines, rng, big_mb * 1024 * 1024)
    open(stamp, "w").close()
    return corpus, big


def run_once(cmd, env):
    """Wall time, processor time (user and system) and peak resident set
    (KiB) of one run, its output read and thrown away."""
    # Into a pipe, not /dev/null: GNU grep stops at the first match when it
    # sees its output is /dev/null.
    start = time.perf_counter()
    child = subprocess.Popen(cmd, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, env=env)
    while child.stdout.read(1 << 16):
        pass
    _, status, usage = os.wait4(child.pid, 0)
    took = time.perf_counter() - start
    child.stdout.close()
    code = os.waitstatus_to_exitcode(status)
    if code not in (0, 1):
        sys.exit(f"{' '.join(cmd)} failed with status {code}")
    return took, usage.ru_utime + usage.ru_stime, usage.ru_maxrss


def best_time(cmd, runs, env):
    runs = [run_once(cmd, env) for _ in range(runs)]
    return min(r[0] for r in runs), min(r[1] for r in runs)


def peak_kib(cmd):
    """The peak resident set of the program, measured by time(1) so that the
    memory of this script (which a forked child shares until it execs) does
    not count."""
    if shutil.which("time") or os.path.exists("/usr/bin/time"):
        run = subprocess.run(["/usr/bin/time", "-f", "%M"] + cmd, stdout=subprocess.PIPE,
                             stderr=subprocess.PIPE)
        return int(run.stderr.decode().strip().splitlines()[-1])
    return run_once(cmd, os.environ)[2]


def total_bytes(folder):
    return sum(os.path.getsize(os.path.join(folder, n)) for n in os.listdir(folder))


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("kestrel")
    ap.add_argument("scratch")
    ap.add_argument("--mb", type=int, default=300)
    ap.add_argument("--big-mb", type=int, default=1024)
    ap.add_argument("--runs", type=int, default=3)
    a = ap.parse_args()
    corpus, big = build_corpus(a.scratch, a.mb, a.big_mb)
    size = total_bytes(corpus)
    env = dict(os.environ, LC_ALL="C.UTF-8")
    rg = shutil.which("rg")
    kestrel = [a.kestrel, "search", "--recursive"]
    queries = [
        ("literal 'kestrel', case folded", [
            ("kestrel --count", kestrel + ["--count", "kestrel", corpus]),
            ("kestrel (lines)", kestrel + ["kestrel", corpus]),
            ("grep -c -i", ["grep", "-r", "-c", "-i", "kestrel", corpus]),
            ("grep -o -n -i", ["grep", "-r", "-o", "-n", "-i", "kestrel", corpus]),
        ] + ([("rg -c -i -j1", [rg, "-j1", "-c", "-i", "kestrel", corpus])] if rg else [])),
        ("regex 'colou?r', case folded", [
            ("kestrel --count", kestrel + ["--count", "--regex", "colou?r", corpus]),
            ("kestrel (lines)", kestrel + ["--regex", "colou?r", corpus]),
            ("grep -E -c -i", ["grep", "-r", "-E", "-c", "-i", "colou?r", corpus]),
            ("grep -E -o -n -i", ["grep", "-r", "-E", "-o", "-n", "-i", "colou?r", corpus]),
        ] + ([("rg -c -i -j1", [rg, "-j1", "-c", "-i", "colou?r", corpus])] if rg else [])),
    ]
    print(f"corpus: {size / 1e6:.0f} MB in {len(os.listdir(corpus))} files; "
          f"{os.cpu_count()} processors; best of {a.runs} runs, page cache warm")
    for title, commands in queries:
        print(f"\n{title}")
        wall, cpu = {}, {}
        for name, cmd in commands:
            run_once(cmd, env)  # warm the cache
            wall[name], cpu[name] = best_time(cmd, a.runs, env)
            print(f"  {name:18s} {wall[name]:7.3f} s wall {size / wall[name] / 1e6:7.0f} MB/s"
                  f"   {cpu[name]:7.3f} s processor {size / cpu[name] / 1e6:7.0f} MB/s")
        for name in wall:
            if not name.startswith("kestrel"):
                print(f"  kestrel --count against {name}: {wall[name] / wall['kestrel --count']:.2f}x"
                      f" (wall), {cpu[name] / cpu['kestrel --count']:.2f}x (processor)")
    print(f"\npeak memory on one {os.path.getsize(big) / 2**30:.1f} GiB file:")
    for name, cmd in [("kestrel search kestrel", [a.kestrel, "search", "kestrel", big]),
                      ("kestrel search --regex colou?r",
                       [a.kestrel, "search", "--regex", "colou?r", big]),
                      ("grep -c -i kestrel", ["grep", "-c", "-i", "kestrel", big])]:
        print(f"  {name:32s} {peak_kib(cmd) / 1024:7.1f} MB")


if __name__ == "__main__":
    main()
