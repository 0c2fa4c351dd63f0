"""The sounds of the sample levels: mono, 8 bits, 11025 samples a second, under a second each."""

import io
import math
import wave

from .textures import chance

RATE = 11025


def wav(seconds, loudness):
    """A wav file of the samples loudness(t), from -1 to 1, t in seconds."""
    samples = bytes(round(127.5 + 120 * max(-1, min(1, loudness(n / RATE)))) for n in range(round(seconds * RATE)))
    file = io.BytesIO()
    with wave.open(file, "wb") as out:
        out.setnchannels(1)
        out.setsampwidth(1)
        out.setframerate(RATE)
        out.writeframes(samples)
    return file.getvalue()


def tone(t, hertz):
    return math.sin(math.tau * hertz * t)


def hiss(t, seed):
    return 2 * chance(int(t * RATE), 0, seed) - 1


def hum():
    """Whole periods of 50 and 100 Hz, so that it loops without a click."""
    return wav(0.4, lambda t: 0.35 * tone(t, 50) + 0.25 * tone(t, 100) + 0.1 * tone(t, 150))


def lapping():
    """Two waves on a wall; silent at both ends."""
    return wav(0.8, lambda t: 0.5 * math.sin(math.pi * t / 0.4) ** 2 * (0.6 * hiss(t / 3, 1) + 0.4 * hiss(t / 9, 2)))


def drip():
    return wav(0.3, lambda t: 0.8 * math.exp(-18 * t) * math.sin(math.tau * (900 * t + 1400 * t * t)))


def gull():
    return wav(0.5, lambda t: 0.5 * math.sin(math.pi * t / 0.5) * math.sin(math.tau * 1100 * t - 3 * math.cos(38 * t)))


def clank():
    return wav(0.4, lambda t: 0.5 * math.exp(-12 * t) * (tone(t, 523) + 0.6 * tone(t, 1371) + 0.2 * hiss(t, 3)))


def bell():
    return wav(0.9, lambda t: 0.4 * math.exp(-4 * t) * (tone(t, 392) + 0.7 * tone(t, 941) + 0.4 * tone(t, 1490)))


def crackle():
    """A fire: sparse pops over a quiet hiss."""

    def loudness(t):
        slot = int(t * 40)
        pop = math.exp(-260 * (t * 40 - slot) / 40) if chance(slot, 1, 4) > 0.6 else 0
        return 0.7 * pop * hiss(t, 5) + 0.06 * hiss(t, 6)

    return wav(0.7, loudness)
