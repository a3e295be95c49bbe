import os
import subprocess
import time
import unittest
from collections import Counter

from figures import descendants, figures_of, medians, over_runs, process_figures


def half_a_minute(**counted):
    return figures_of(30, Counter(cpu=100, children=50, voluntary=1000),
                      Counter(pss=3072, cpu=104, children=60, voluntary=1060), **counted)


class TestFigures(unittest.TestCase):
    def test_memory_is_that_of_the_end(self):
        self.assertEqual(half_a_minute()['pssMib'], 3)

    def test_cpu_of_ended_child_processes_counts_too(self):
        self.assertEqual(half_a_minute()['cpuMsPerMinute'], 28)

    def test_switches_are_those_of_a_second(self):
        self.assertEqual(half_a_minute()['voluntarySwitchesPerSecond'], 2)

    def test_what_was_not_counted_has_no_figure(self):
        for name in ('paintsPerMinute', 'xRequestsPerMinute', 'pollsPerMinute'):
            self.assertNotIn(name, half_a_minute())

    def test_nothing_counted_is_a_zero(self):
        figures = half_a_minute(paints=0, x_requests=[0, 0])
        self.assertEqual(figures['paintsPerMinute'], 0)
        self.assertEqual(figures['xRequestsPerMinute'], 0)

    def test_bytes_are_those_of_one_poll(self):
        figures = half_a_minute(traffic=Counter(polls=10, sent=800, received=3000))
        self.assertEqual(figures['bytesSentPerPoll'], 80)
        self.assertEqual(figures['bytesReceivedPerPoll'], 300)

    def test_without_a_poll_there_is_no_figure_of_one(self):
        figures = half_a_minute(traffic=Counter())
        self.assertEqual(figures['pollsPerMinute'], 0)
        self.assertNotIn('bytesReceivedPerPoll', figures)

    def test_a_connection_that_is_kept_is_one(self):
        self.assertEqual(half_a_minute(traffic=Counter(polls=10))['pollConnections'], 1)
        opened = Counter(polls=10, connections=10)
        self.assertEqual(half_a_minute(traffic=opened)['pollConnections'], 10)

    def test_the_median_is_the_middle_or_between_the_two(self):
        self.assertEqual(medians([{'a': value} for value in (5, 1, 3)]), {'a': 3})
        self.assertEqual(medians([{'a': value} for value in (5, 1, 3, 2)]), {'a': 2.5})

    def test_a_figure_that_some_run_lacks_has_no_median(self):
        runs = [{'a': 1, 'b': 1}, {'a': 3}, {'a': 2, 'b': 2}]
        self.assertEqual(medians(runs), {'a': 2})
        self.assertEqual(over_runs(runs, max), {'a': 3})

    def test_the_kernel_has_figures_of_a_living_process_only(self):
        own = process_figures(os.getpid())
        self.assertGreater(min(own[name] for name in ('pss', 'uss', 'dirty', 'threads')), 0)
        # The same clock as the process itself reads, but for the time between the readings.
        self.assertAlmostEqual(own['cpu'], time.process_time() * 1e3, delta=500)
        with subprocess.Popen(['sleep', '60']) as child:
            self.assertEqual(descendants(os.getpid()), [child.pid])
            child.kill()
        self.assertEqual(sum(process_figures(child.pid).values()), 0)


if __name__ == '__main__':
    unittest.main()
