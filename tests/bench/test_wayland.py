import unittest
from collections import Counter
from unittest import mock

from environment import CAPSULE
from figures import Failure
from wayland import AREA, STATES, Pictures, with_xwayland


def grey(value):
    return b'P6\n1 1\n255\n' + bytes([value] * 3)


class TestWayland(unittest.TestCase):
    def test_the_first_capsule_is_a_black_pixel(self):
        with mock.patch.object(Pictures, '_take', side_effect=[grey(40), grey(39)]) as take:
            self.assertIsNotNone(Pictures(None, True).await_capsule(10))
        take.assert_called_with('{},{} 1x1'.format(*CAPSULE))
        with mock.patch.object(Pictures, '_take', return_value=grey(40)):
            self.assertIsNone(Pictures(None, True).await_capsule(0))

    def test_a_pair_of_pictures_differs_while_something_moves(self):
        for taken, share in ([1, 2, 2, 2], 0.5), ([1, 1, 2, 2], 0), ([1, 2, 3, 4], 1):
            pictures = Pictures(None, True)
            now = iter(number / 2 for number in range(100))
            with mock.patch.object(Pictures, '_take', side_effect=taken) as take, \
                 mock.patch('time.sleep'), mock.patch('time.monotonic', lambda: next(now)):
                pictures.begin()
                pictures.wait(4)
            take.assert_called_with(AREA)
            self.assertEqual(pictures.share_that_moved(), share, taken)

    def test_a_state_in_which_nothing_moves_is_only_the_rest(self):
        moving = {key: moves_as_it_should for key, *_, moves_as_it_should in STATES}
        self.assertEqual([key for key, is_right in moving.items() if is_right(0)], ['rest'])
        self.assertFalse(moving['scrolling'](0.9))

    def test_the_capsules_must_be_shown_in_the_way_that_is_measured(self):
        for found, is_native, fails in ((None, True, True), (Failure, False, True),
                                        (None, False, False), (Failure, True, False)):
            with mock.patch('wayland.XObserver') as observer, mock.patch('wayland.end'):
                observer.return_value.find_window.side_effect = found
                if fails:
                    self.assertRaises(Failure, Pictures(None, is_native).find_window)
                else:
                    Pictures(None, is_native).find_window()

    def test_the_x_server_counts_too(self):
        before = Counter(cpu=1000, voluntary=10, pss=4096)
        after = Counter(cpu=1030, voluntary=40, pss=2048)
        figures = with_xwayland({'seconds': 30, 'cpuMsPerMinute': 5, 'pssMib': 8,
                                 'voluntarySwitchesPerSecond': 2}, before, after)
        self.assertEqual(figures['cpuMsPerMinuteWithXwayland'], 65)
        self.assertEqual(figures['pssMibWithXwayland'], 10)
        self.assertEqual(figures['voluntarySwitchesPerSecondWithXwayland'], 3)
        self.assertEqual(figures['cpuMsPerMinute'], 5)


if __name__ == '__main__':
    unittest.main()
