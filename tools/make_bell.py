#!/usr/bin/env python3
"""Synthesises the built-in "BELL" sound, data/sounds/bell.wav.

A small struck bell: a handful of inharmonic partials (the ratios of a thin metal bar, which
is what makes it sound struck rather than bowed), each dying away exponentially, the higher
ones faster. The fundamental is split into two slightly detuned partials so the tone beats
gently as a real bell does. No randomness: the file is the same byte for byte on every run.

Output: 1.2 s, 16-bit signed PCM, mono, 22050 Hz (about 53 KB), peak at -3 dBFS.

Usage: python3 make_bell.py [output.wav]
"""

import math
import os
import struct
import sys
import wave

RATE = 22050
SECONDS = 1.2
FUNDAMENTAL = 987.77  # B5: bright but not shrill on small speakers
PEAK = 0.7            # about -3 dBFS, headroom for the mixer
ATTACK = 0.002        # seconds: a click-free strike
RELEASE = 0.08        # seconds: fade to exact silence at the end

# (frequency ratio, amplitude, decay time constant in seconds)
PARTIALS = (
    (1.000, 1.00, 0.42),
    (1.003, 0.60, 0.42),
    (2.000, 0.35, 0.30),
    (2.756, 0.30, 0.22),
    (4.070, 0.12, 0.14),
    (5.404, 0.06, 0.09),
)


def envelope(t, total):
    if t < ATTACK:
        return t / ATTACK
    remaining = total - t
    if remaining < RELEASE:
        return max(0.0, remaining / RELEASE)
    return 1.0


def synthesise():
    count = int(RATE * SECONDS)
    raw = []
    for n in range(count):
        t = n / RATE
        value = sum(
            amp * math.exp(-t / decay) * math.sin(2 * math.pi * FUNDAMENTAL * ratio * t)
            for ratio, amp, decay in PARTIALS
        )
        raw.append(value * envelope(t, SECONDS))
    scale = PEAK / max(abs(v) for v in raw)
    return [round(v * scale * 32767) for v in raw]


def check(samples):
    failures = []
    if len(samples) != int(RATE * SECONDS):
        failures.append(f"{len(samples)} samples")
    if max(abs(s) for s in samples) > 32767:
        failures.append("clipped")
    if samples[0] != 0 or samples[-1] != 0:
        failures.append("does not start and end in silence")
    return failures


def main():
    here = os.path.dirname(os.path.abspath(__file__))
    target = sys.argv[1] if len(sys.argv) > 1 else os.path.join(here, "..", "data", "sounds", "bell.wav")
    samples = synthesise()
    failures = check(samples)
    if failures:
        for failure in failures:
            print("check failed: " + failure, file=sys.stderr)
        return 1

    os.makedirs(os.path.dirname(os.path.abspath(target)), exist_ok=True)
    temporary = target + ".tmp"
    with wave.open(temporary, "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(2)
        out.setframerate(RATE)
        out.writeframes(struct.pack(f"<{len(samples)}h", *samples))
    os.replace(temporary, target)
    print(f"{target}: {len(samples)} samples, {os.path.getsize(target)} bytes")
    return 0


if __name__ == "__main__":
    sys.exit(main())
