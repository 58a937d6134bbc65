"""A run list of a thousand projects with all batch tables: memory, descriptors and time per project stay level."""
import os
import subprocess
import sys
import time
import unittest

from support import TOVCORE, dna_project
from three_projects import FLAGS, SAMPLES, STRUCTURE, ThreeProjects, genotypes_project, microsat_project

PROJECTS = 1000
WARM_UP = 10


@unittest.skipUnless(sys.platform.startswith("linux"), "reads /proc")
class LongRunList(ThreeProjects):
    def run_watched(self):
        """Runs the list. Returns (projects done, resident kB, open descriptors), as often as they can be seen."""
        # A checking build keeps freed memory back: little of it here, or it would look like growth.
        checks = ":".join(filter(None, [os.environ.get("ASAN_OPTIONS"), "quarantine_size_mb=1"]))
        seen = []
        with subprocess.Popen([TOVCORE], cwd=self.directory, env=dict(os.environ, ASAN_OPTIONS=checks),
                              stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL) as process:
            while process.poll() is None:
                try:
                    with open("/proc/%d/statm" % process.pid, encoding="ascii") as file:
                        resident = int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") // 1024
                    descriptors = len(os.listdir("/proc/%d/fd" % process.pid))
                except (OSError, IndexError):
                    break
                seen.append((self.projects_done(), resident, descriptors))
                time.sleep(0.02)
            self.assertEqual(process.wait(), 0)
        return seen

    def projects_done(self):
        return self.read("amovares.sum").count('.tvp"') if self.exists("amovares.sum") else 0

    def ends(self):
        """When the log of each project was closed, in seconds."""
        return [os.stat(self.path("p%04d.res" % k, "Tovenia_log.txt")).st_mtime_ns / 1e9 for k in range(PROJECTS)]

    def test_memory_descriptors_and_time_stay_level(self):
        self.write("glbstreams.txt", "\n".join([""] + FLAGS) + "\n")
        self.write_settings(NumSimulFuTest=5, NumIterationsNeutralityTests=5, MarkovChainStepsHW=100,
                            MarkovChainStepsLD=20, NumPermutationsAMOVA=0, NumPermutationsFST=0, DetectSelectedLoci=1,
                            NumberOfSimsForFDist2=5)
        texts = (dna_project(SAMPLES, STRUCTURE), microsat_project(), genotypes_project())
        lines = ["", "use_interf_settings"]
        for k in range(PROJECTS):
            self.write("p%04d.tvp" % k, texts[k % 3])
            lines += ["p%04d.tvp" % k, "0", "0"]
        self.write("tov_run.txt", "\n".join(lines + ["end"]) + "\n")
        seen = self.run_watched()
        self.assertEqual(self.projects_done(), PROJECTS)
        early = [s for s in seen if WARM_UP <= s[0] < PROJECTS // 10]
        late = [s for s in seen if s[0] >= PROJECTS - PROJECTS // 10]
        self.assertTrue(early and late, "the run was too fast to be seen")
        self.assertLessEqual(max(s[1] for s in late), max(s[1] for s in early) + 1024)
        self.assertLessEqual(max(s[2] for s in late), max(s[2] for s in early) + 1)
        ends = self.ends()
        first, last = ends[WARM_UP + 100] - ends[WARM_UP], ends[-1] - ends[-101]
        print("per project: %.2f ms first, %.2f ms last; resident %d kB, then %d kB" % (
            10 * first, 10 * last, max(s[1] for s in early), max(s[1] for s in late)), file=sys.stderr)
        self.assertLess(last, 3 * first + 0.2)


if __name__ == "__main__":
    unittest.main()
