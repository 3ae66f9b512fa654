"""What of a signal is found again."""

import os
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..",
                                "benchmarks", "peers"))

try:
    import numpy
    import sounds
except ImportError:
    numpy = None

RATE = 44100
PIECE = 512 / RATE


@unittest.skipIf(numpy is None, "numpy is not installed")
class SecondsKeptTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.signal = sounds.noise(6)

    def kept(self, heard, begin=0, end=None):
        return sounds.seconds_kept(heard, self.signal, begin, end or len(self.signal))

    def silence(self, seconds):
        return numpy.zeros(int(seconds * RATE), dtype=numpy.float32)

    def test_all_is_found_in_the_signal_itself(self):
        self.assertAlmostEqual(self.kept(self.signal), 6, delta=PIECE)

    def test_nothing_is_found_in_silence_in_other_noise_or_in_nothing(self):
        self.assertEqual(self.kept(self.silence(2)), 0)
        self.assertEqual(self.kept(sounds.noise(0.3, seed=8)), 0)
        self.assertEqual(self.kept(numpy.zeros(0, dtype=numpy.float32)), 0)

    def test_only_what_lies_in_the_interval_counts(self):
        self.assertAlmostEqual(self.kept(self.signal, RATE, 3 * RATE), 2, delta=2 * PIECE)
        self.assertEqual(self.kept(self.signal[3 * RATE:], 0, 2 * RATE), 0)

    def test_a_late_start_and_silence_before_it_are_no_loss_of_the_rest(self):
        heard = numpy.concatenate([self.silence(0.3), self.signal[RATE:]])
        self.assertAlmostEqual(self.kept(heard), 5, delta=3 * PIECE)

    def test_a_gap_loses_its_length(self):
        heard = numpy.concatenate([self.signal[:2 * RATE], self.signal[3 * RATE:]])
        self.assertAlmostEqual(self.kept(heard), 5, delta=4 * PIECE)

    def test_silence_put_in_between_loses_nothing_but_the_joints(self):
        heard = numpy.concatenate([self.signal[:2 * RATE + 100], self.silence(0.5),
                                   self.signal[2 * RATE + 100:]])
        self.assertAlmostEqual(self.kept(heard), 6, delta=4 * PIECE)

    def test_what_is_repeated_counts_once(self):
        heard = numpy.concatenate([self.signal[:RATE], self.signal[:RATE]])
        self.assertAlmostEqual(self.kept(heard), 1, delta=4 * PIECE)

    def test_other_volume_and_sixteen_bits_hide_nothing(self):
        heard = (numpy.round(self.signal * 0.3 * 32767) / 32767).astype(numpy.float32)
        self.assertAlmostEqual(self.kept(heard), 6, delta=PIECE)

    def test_a_shift_of_half_a_frame_hides_nothing(self):
        heard = (self.signal[:-1] + self.signal[1:]) / 2
        self.assertAlmostEqual(self.kept(heard), 6, delta=2 * PIECE)

    def test_the_signal_stays_within_full_scale(self):
        self.assertLessEqual(float(numpy.abs(self.signal).max()), 1.0)
        self.assertEqual(len(self.signal), 6 * RATE)


if __name__ == "__main__":
    unittest.main()
