"""The rows of bench/compare for one export split into parts: the CPU time of the parts, the
sound and the join against one export's, the join's time against the export's, and the quality
of the joined file against the single export's. Each repetition runs the single export, then
the split one, so the two alternate; the times of each part are kept for the projections of the
README (one line per repetition on stderr).

The input is made once by ffmpeg from its lavfi sources: 60 s of 640x360 at 25 frames a second
with a 440 Hz tone, in 4 parts of 15 s."""

import os
import re
import resource
import subprocess
import sys
import tempfile
import time

PARTS = 4
SECONDS = 60


def children_cpu():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def timed(command):
    """Runs the command; its CPU seconds (user and system) and wall seconds."""
    cpu, wall = children_cpu(), time.monotonic()
    subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=True)
    return children_cpu() - cpu, time.monotonic() - wall


def make_input(path):
    subprocess.run(["ffmpeg", "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
                    "testsrc2=size=640x360:rate=25:duration=%d" % SECONDS, "-f", "lavfi", "-i",
                    "sine=frequency=440:sample_rate=48000:duration=%d" % SECONDS,
                    "-c:v", "libx264", "-preset", "veryfast", "-crf", "18", "-g", "50",
                    "-pix_fmt", "yuv420p", "-c:a", "aac", "-shortest", path], check=True)


def psnr(file, source):
    """The mean PSNR of the file's pictures against the source's, as ffmpeg measures it."""
    done = subprocess.run(["ffmpeg", "-nostdin", "-i", file, "-i", source, "-lavfi",
                           "[0:v][1:v]psnr", "-f", "null", "-"],
                          stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True, check=True)
    return float(re.search(r"average:([0-9.]+|inf)", done.stderr).group(1))


def split(host, source, folder, output):
    """The split export: each part, the sound and the join; their CPU and wall seconds."""
    parts = []
    for index in [str(i) for i in range(PARTS)] + ["audio"]:
        parts.append(timed([host, "segment", source, "--index=" + index, "--count=%d" % PARTS,
                            "--output=" + folder, "--overwrite"]))
    join = timed([host, "join", folder, "--output=" + output, "--overwrite"])
    return parts, join


def measure(host, repetitions):
    """Per repetition: (single export cpu, wall), [(part cpu, wall)...], (join cpu, wall),
    and the PSNR of each file against the source."""
    runs = []
    with tempfile.TemporaryDirectory() as work:
        source = os.path.join(work, "input.mp4")
        make_input(source)
        single = os.path.join(work, "single.mp4")
        joined = os.path.join(work, "joined.mp4")
        for repetition in range(repetitions):
            export = timed([host, "export", source, "--output=" + single, "--overwrite"])
            parts, join = split(host, source, os.path.join(work, "parts"), joined)
            runs.append({"export": export, "parts": parts, "join": join,
                         "single_psnr": psnr(single, source), "joined_psnr": psnr(joined, source)})
            print("segments, repetition %d: export %.2f s; parts %s s; sound %.2f s; join %.3f s"
                  % (repetition + 1, export[1], " ".join("%.2f" % wall for _, wall in parts[:-1]),
                     parts[-1][1], join[1]), file=sys.stderr)
    return runs


def rows(host, table, repetitions, add_repeated, median):
    runs = measure(host, repetitions)
    single_cpu = [run["export"][0] for run in runs]
    split_cpu = [sum(cpu for cpu, _ in run["parts"]) + run["join"][0] for run in runs]
    add_repeated(table, "Segments, CPU of %d parts + sound + join vs one export (%d s 360p)"
                 % (PARTS, SECONDS),
                 "split %.2f s vs export %.2f s" % (median(split_cpu), median(single_cpu)),
                 [a / b for a, b in zip(split_cpu, single_cpu)], 3, at_most=1.05)
    join_wall = [run["join"][1] for run in runs]
    export_wall = [run["export"][1] for run in runs]
    add_repeated(table, "Segments, the join's time vs the export's",
                 "join %.3f s vs export %.2f s" % (median(join_wall), median(export_wall)),
                 [a / b for a, b in zip(join_wall, export_wall)], 3, at_most=0.02)
    joined = [run["joined_psnr"] for run in runs]
    single = [run["single_psnr"] for run in runs]
    add_repeated(table, "Segments, PSNR vs the source, joined minus one export, in dB",
                 "joined %.2f dB vs export %.2f dB" % (median(joined), median(single)),
                 [abs(a - b) for a, b in zip(joined, single)], 3, at_most=0.1)
