#!/usr/bin/env python3
"""Writes the fuzz target's seed corpus: a few host sessions encoded the way fuzz_requests.cpp
decodes them (FuzzedDataProvider: integers from the end of the input, texts from the front).

    tests/reliability/make_corpus.py [output directory, default: corpus/ beside this script]
"""
import math
import pathlib
import struct
import sys

# Request numbers and table positions, as in fuzz_requests.cpp.
DISPATCH, SET_PARAMETER, SET_PROGRAM, SET_SAMPLE_RATE, PROCESS, REOPEN = range(6)
REQUEST_MAX = REOPEN
RATES = [1.0, 8000.0, 22050.0, 44100.0, 48000.0, 48000.5, 88200.0, 96000.0, 192000.0, 384000.0,
         0.0, -0.0, -1.0, -48000.0, math.nan, math.inf, -math.inf, 1e30, 'FLT_MAX', 'FLT_TRUE_MIN']
VALUES = [0.0, 1.0, 0.5, -0.0, 0.25, 0.75, 0.50000006, -1.0, 2.0, 1e30, -1e30, 'FLT_MAX',
          '-FLT_MAX', 'FLT_TRUE_MIN', math.nan, math.inf, -math.inf]
SILENCE, NOISE, HUGE_PLUS, HUGE_MINUS, ALTERNATING, NAN, PLUS_INF, MINUS_INF, NOISE_WITH_NAN = range(9)
SIGNAL_MAX = NOISE_WITH_NAN
MAX_BLOCK = 4096


class Session:
    def __init__(self):
        self.front = bytearray()  # texts, read from the start
        self.tail = bytearray()   # integers, in the order they are read from the end

    def _in_range(self, lo, hi, value):
        # Big-endian, one byte per 8 bits of the range, read from the end of the input.
        span, offset, count = hi - lo, value - lo, 0
        while count < 8 and (span >> (8 * count)) > 0:
            count += 1
        self.tail += offset.to_bytes(count, 'big') if count else b''

    def _bool(self, b):
        self.tail.append(1 if b else 0)

    def _u32(self, value):
        self.tail += value.to_bytes(4, 'big')

    def _pick_small(self, lo, hi, value):
        self._bool(True)
        self._in_range(lo, hi, value)

    def _pick_table(self, table, value):
        self._bool(True)
        self._in_range(0, len(table) - 1, table.index(value))

    def _request(self, r):
        self._in_range(0, REQUEST_MAX, r)

    def rate(self, value):
        self._request(SET_SAMPLE_RATE)
        self._pick_table(RATES, value)
        return self

    def param(self, index, value):
        self._request(SET_PARAMETER)
        self._pick_small(-1, 6, index)
        self._pick_table(VALUES, value)
        return self

    def program(self, number):
        self._request(SET_PROGRAM)
        self._pick_small(-1, 17, number)
        return self

    def process(self, frames, signal, in_place=False):
        self._request(PROCESS)
        self._in_range(0, MAX_BLOCK, frames)
        self._in_range(0, SIGNAL_MAX, signal)
        self._bool(in_place)
        return self

    def dispatch(self, opcode, index=0, value=0, opt=0.0, text=b''):
        self._request(DISPATCH)
        self._pick_small(-1, 81, opcode)
        self._pick_small(-2, 20, index)
        self._bool(True)
        self._in_range(-2, 20, value)
        self._pick_table(VALUES, opt)
        self.front += text.replace(b'\\', b'\\\\') + b'\\x'  # backslash + other ends the text
        if opcode in (42, 69):  # arrangements: both present, two channels each where asked
            if opcode == 42:
                self._in_range(0, 8, 2)
                self._in_range(0, 8, 2)
            self._bool(True)
            self._bool(True)
        elif opcode == 24:
            self._in_range(0, 512, 0)
        elif opcode == 56:
            self._bool(False)  # keep the record
        return self

    def reopen(self):
        self._request(REOPEN)
        return self

    def encode(self):
        return bytes(self.front) + bytes(reversed(self.tail))


def seeds():
    yield 'play_44100', (Session().rate(44100.0).param(2, 0.75).param(3, 1.0)
                         .process(512, NOISE).process(4096, NOISE).process(1, NOISE))
    yield 'play_48000_in_place', (Session().rate(48000.0).param(1, 1.0).process(1024, NOISE, True)
                                  .program(5).process(64, NOISE, True))
    yield 'before_set_up', Session().process(256, NOISE).rate(22050.0).process(256, NOISE)
    yield 'bad_input', (Session().rate(96000.0).process(300, NAN).process(300, PLUS_INF)
                        .process(300, HUGE_PLUS).process(300, ALTERNATING).process(300, NOISE_WITH_NAN)
                        .process(300, NOISE))
    yield 'bad_parameters', (Session().rate(44100.0).param(3, math.nan).process(128, NOISE)
                             .param(2, math.inf).param(5, 1e30).process(128, NOISE)
                             .param(3, 0.5).param(2, 0.5).param(5, 0.5).process(128, NOISE)
                             .process(128, NOISE).process(128, NOISE))
    yield 'odd_rates', (Session().rate(1.0).process(4096, NOISE).rate(0.0).rate(math.nan)
                        .rate(384000.0).process(2048, NOISE).rate(1e30).process(64, NOISE)
                        .rate(8000.0).process(0, NOISE).param(4, 0.25).process(0, SILENCE)
                        .process(100, NOISE))
    yield 'dispatcher_tour', (Session().dispatch(45).dispatch(48).dispatch(49).dispatch(35)
                              .dispatch(56, index=2).dispatch(56, index=7).dispatch(29, index=3)
                              .dispatch(4, text=b'Slap Bass').dispatch(5).dispatch(7, index=2)
                              .dispatch(8, index=1).dispatch(6, index=0).dispatch(51, text=b'bypass')
                              .dispatch(69).dispatch(42).dispatch(12, value=1).dispatch(59, opt=1e30)
                              .dispatch(10, opt=0.5).rate(44100.0).process(64, NOISE).reopen()
                              .process(64, NOISE))


def main():
    here = pathlib.Path(__file__).resolve().parent
    out = pathlib.Path(sys.argv[1]) if len(sys.argv) > 1 else here / 'corpus'
    out.mkdir(parents=True, exist_ok=True)
    for name, session in seeds():
        (out / f'{name}.bin').write_bytes(session.encode())


if __name__ == '__main__':
    main()
