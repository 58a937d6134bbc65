"""A run list of a thousand projects with all batch tables: memory, descriptors and time per project stay level."""
import os
import subprocess
import sys
import time
import unittest

from support import RunTestCase, TOVCORE, dna_project, settings_text
from test_batch_tables import FLAGS, SAMPLES, STRUCTURE

PROJECTS = 1000


@unittest.skipUnless(sys.platform.startswith("linux"), "reads /proc")
class LongRunList(RunTestCase):
    def samples_of_run(self):
        """(projects done, resident kB, open descriptors, seconds), as often as they can be seen."""
        start = time.monotonic()
        # A checking build keeps freed memory back: little of it here, or it would look like growth.
        checks = ":".join(filter(None, [os.environ.get("ASAN_OPTIONS"), "quarantine_size_mb=1"]))
        with subprocess.Popen([TOVCORE], cwd=self.directory, env=dict(os.environ, ASAN_OPTIONS=checks), stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL) as process:
            seen = []
            while process.poll() is None:
                try:
                    with open("/proc/%d/statm" % process.pid, encoding="ascii") as file:
                        resident = int(file.read().split()[1]) * os.sysconf("SC_PAGE_SIZE") // 1024
                    descriptors = len(os.listdir("/proc/%d/fd" % process.pid))
                except (OSError, IndexError):
                    break
                done = self.read("amovares.sum").count('.tvp"') if self.exists("amovares.sum") else 0
                seen.append((done, resident, descriptors, time.monotonic() - start))
                time.sleep(0.01)
            self.assertEqual(process.wait(), 0)
        return seen

    def test_memory_descriptors_and_time_stay_level(self):
        self.write("glbstreams.txt", "\n".join([""] + FLAGS) + "\n")
        self.write("p.tvp", dna_project(SAMPLES, STRUCTURE))
        self.write("tov_run.tvs", settings_text(TaskNumber=1 + 2 + 512 + 1024, HaplAMOVA=1, ComputePairwiseFST=1,
                                                PrintFstVals=1, NumPermutationsAMOVA=0, NumPermutationsFST=0))
        self.write("tov_run.txt", "\n".join(["", "use_interf_settings"] + ["p.tvp", "0", "0"] * PROJECTS + ["end"]) + "\n")
        seen = self.samples_of_run()
        self.assertEqual(self.read("amovares.sum").count('.tvp"'), PROJECTS)
        early = [s for s in seen if 10 <= s[0] < PROJECTS // 5]
        late = [s for s in seen if 4 * PROJECTS // 5 <= s[0] < PROJECTS]
        self.assertTrue(early and late, "the run was too fast to be seen")
        self.assertLessEqual(max(s[1] for s in late), max(s[1] for s in early) + 1024)
        self.assertLessEqual(max(s[2] for s in late), max(s[2] for s in early) + 1)

        def pace(part):
            return (part[-1][3] - part[0][3]) / max(part[-1][0] - part[0][0], 1)

        self.assertLess(pace(late), 3 * pace(early) + 0.002)


if __name__ == "__main__":
    unittest.main()
