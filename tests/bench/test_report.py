import importlib.util
import json
import tempfile
import unittest
from pathlib import Path

from report import Results, markdown, targets, text

PROGRAM = {'rows': [
    {'key': 'brimlet.rest', 'name': 'B', 'median': {'pssMib': 9, 'cpuMsPerMinute': 12.75}},
    {'key': 'brimlet.cycles', 'name': 'B', 'median': {'pssMib': 10}},
    {'key': 'floor.rest', 'name': 'F', 'median': {'cpuMsPerMinute': 4.25}},
    {'key': 'qlipper', 'name': 'Q', 'median': {'pssMib': 10}},
    {'key': 'copyq', 'name': 'C', 'remark': 'absent: no such package'}]}


class TestReport(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)

    def results(self, **files):
        for name, content in files.items():
            raw = content if isinstance(content, str) else json.dumps(content)
            (self.folder / f'{name}.json').write_text(raw)
        return Results(self.folder)

    def target(self, what, **files):
        return next(target for target in targets(self.results(**files)) if target.what == what)

    def test_a_limit_may_be_reached_but_not_passed(self):
        self.assertIs(self.target('PSS, the panel never opened', program=PROGRAM).is_met, True)
        self.assertIs(self.target('CPU at rest').is_met, False)
        self.assertIs(self.target("CPU at rest beside the floor's").is_met, True)

    def test_below_a_peer_is_less_than_it(self):
        self.assertIs(self.target('PSS, below that of qlipper', program=PROGRAM).is_met, False)

    def test_a_figure_that_is_missing_is_neither_met_nor_missed(self):
        for target in targets(self.results()):
            self.assertIsNone(target.is_met, target.what)
        self.assertIsNone(self.target('CPU of a poll among many hosts',
                                      fleet=[{'cpuMsPerPoll': 0.1}, {}]).is_met)

    def test_a_native_surface_is_compared_with_an_x11_window_and_its_server(self):
        def row(way, cpu, pss):
            return {'key': f'brimlet.{way}.rest', 'name': way, 'median': {
                'cpuMsPerMinuteWithXwayland': cpu, 'pssMib': pss}}
        rows = {'rows': [row('native', 12, 9.5), row('xwayland', 12, 8)]}
        less = self.target('CPU under Wayland at rest, below that of an X11 window and Xwayland',
                           wayland=rows)
        self.assertEqual((less.limit, less.is_met), (12, False))
        beside = self.target('PSS under Wayland at rest, beside that of an X11 window')
        self.assertEqual((beside.limit, beside.is_met), (9.5, True))
        self.assertIn('| xwayland | 8 |', markdown(self.results(), []))

    def test_of_many_hosts_the_worst_counts(self):
        target = self.target('memory of a host among many', fleet=[
            {'kibPerHost': 30, 'service': 'usual'}, {'kibPerHost': 41, 'service': 'usual'},
            {'kibPerHost': 99, 'service': 'no validators'}])
        self.assertEqual(target.value, 41)
        self.assertIs(target.is_met, False)

    def test_absent_parts_are_named_with_the_reason(self):
        results = self.results(program=PROGRAM)
        self.assertEqual(len(results.absences), 5)  # Wayland, fleet, poll, steps, and one peer
        self.assertEqual(results.absences[-1], 'C: absent: no such package.')
        self.assertIn('## Not measured\n\n', markdown(results, []))

    def test_a_kind_of_poll_without_figures_is_absent(self):
        results = self.results(poll={'unchanged': None, 'whole': {'instructionsPerPoll': 5}})
        self.assertIn('One poll, unchanged: the service sent no such reply.', results.absences)
        self.assertIn('| `whole instructionsPerPoll` | 5 |\n', markdown(results, []))

    def test_a_benchmark_that_gave_up_is_absent(self):
        results = self.results(micro={'benchmarks': [
            {'name': 'validate', 'error_occurred': True, 'error_message': 'the picture was refused'},
            {'name': 'read', 'cpu_time': 5}]})
        self.assertEqual(len(results.steps), 1)
        self.assertEqual(results.absences[0], 'validate: the picture was refused.')

    def test_of_repeated_steps_the_median_is_shown(self):
        step = {'run_name': 'step/repeats:2', 'cpu_time': 7, 'real_time': 17, 'time_unit': 'ns', 'repetitions': 2}
        once = {'run_name': 'once/iterations:20', 'cpu_time': 9, 'real_time': 19, 'time_unit': 'ns',
                'repetitions': 1, 'slowest ms': 3}
        shown = markdown(self.results(micro={'benchmarks': [
            step, {**step, 'run_type': 'aggregate', 'aggregate_name': 'mean'},
            {**step, 'run_type': 'aggregate', 'aggregate_name': 'median', 'cpu_time': 8, 'real_time': 18},
            once]}), [])
        self.assertIn('|---|--:|--:|--:|--:|\n| step | 8 ns | 18 ns | – | – |\n| once | 9 ns | 19 ns | 3 | – |\n',
                      shown)

    def test_broken_results_are_absent(self):
        broken = '{"rows": ['
        results = self.results(program=broken, fleet=broken, poll=broken, micro=broken)
        self.assertFalse(targets(results)[0].is_met)
        self.assertEqual(len(results.absences), 6)  # the broken steps are named, too

    def test_numbers_have_three_figures_that_count(self):
        for number, expected in ((None, '–'), (0, '0'), (18, '18'), (0.0486, '0.049'),
                                 (9.814, '9.81'), (12.64, '12.6'), (364.4, '364')):
            self.assertEqual(text(number), expected)

    @unittest.skipUnless(importlib.util.find_spec('matplotlib'), 'python3-matplotlib is missing')
    def test_equal_results_make_equal_plots(self):
        from plots import write_plots
        results = self.results(program=PROGRAM, fleet=[
            {'hosts': 10, 'cpuMsPerPoll': 0.4, 'kibPerHost': 6},
            {'hosts': 100, 'cpuMsPerPoll': 0.1, 'kibPerHost': 7}])
        written = write_plots(results, self.folder)
        self.assertEqual([file for file, _ in written],
                         ['memory.svg', 'cpu-at-rest.svg', 'fleet.svg'])
        first = [(self.folder / file).read_bytes() for file, _ in written]
        write_plots(results, self.folder)
        self.assertEqual([(self.folder / file).read_bytes() for file, _ in written], first)


if __name__ == '__main__':
    unittest.main()
