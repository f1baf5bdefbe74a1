#!/usr/bin/env python3
"""usage: whisper_model.py FILE

Writes a model for whisper.cpp that hears the same sentence in every recording, half a minute at a
time: "hello wörld.", or "greetings" when it is to translate. Nothing in it was learned; its weights
are set by hand, so that a real whisper-server runs, with all that it does around a model, without a
download of gigabytes.

How it speaks: each token in use has a direction of its own. The feed-forward part looks at the
direction of the last token and adds that of the next one, many times as strong; the output compares
what comes of that with every token. Attention and audio have no say: their weights are 0.

The file's layout is that of whisper.cpp's models/convert-pt-to-ggml.py: numbers as parameters, a mel
filter bank, the vocabulary, then each tensor by its name. All little-endian.
"""

import array
import math
import struct
import sys

STATE = 32  # how wide the model is, its one layer and that one's one attention head
# Of each half minute it encodes the beginning alone, as it does not listen anyway; real: 1500.
AUDIO_POSITIONS = 64
TEXT_POSITIONS, MELS, SPECTRUM = 448, 80, 201
VOCABULARY = 51865  # of the models that know many languages

# What has a number of its own in every such vocabulary.
END, START, ENGLISH = 50257, 50258, 50259
TRANSLATE, TRANSCRIBE, FIRST_TIME = 50358, 50359, 50364
TIMES_PER_SECOND = 50

# The "ö" is split between two tokens, as rarer characters are.
WORDS = [b" hello", b" w", b"\xc3", b"\xb6", b"rld", b".", b" greetings"]
BLANKS = [b" ", b" -", b" '"]  # whisper.cpp looks these up

LAST_TIME = FIRST_TIME + 2 * TIMES_PER_SECOND
SENTENCE = [TRANSCRIBE, FIRST_TIME, 0, 1, 2, 3, 4, 5, LAST_TIME, END]
TRANSLATION = [TRANSLATE, FIRST_TIME + 1, 6, LAST_TIME, END]
SUCCESSORS = {START: ENGLISH} | {
    token: after
    for tokens in (SENTENCE, TRANSLATION)
    for token, after in zip(tokens, tokens[1:])
}
DIRECTIONS = {token: i for i, token in enumerate([*SUCCESSORS, ENGLISH, END])}

# Normalised, a single direction stands out by about the root of the width. A hidden unit fires
# well below that, and not for what is left in other directions.
THRESHOLD = math.sqrt(STATE) / 2
NEXT_OVER_LAST = 40.0
CERTAINTY = 10.0  # of the output, next to all the tokens that are not in use


# The types of tensors, by their numbers in the file.
SINGLE, HALF = 0, 1


def tensor(kind, *shape, fill=0.0):
    return kind, shape, array.array("f", [fill]) * math.prod(shape)


def bias(*shape):
    return tensor(SINGLE, *shape)


def norm(scale=1.0):
    return tensor(SINGLE, STATE, fill=scale)


def matrix(rows, columns, entries):
    made = tensor(HALF, rows, columns)
    for (row, column), value in entries.items():
        made[2][row * columns + column] = value
    return made


def attention(name):
    for part in ("query", "key", "value", "out"):
        yield f"{name}.{part}.weight", matrix(STATE, STATE, {})
        if part != "key":
            yield f"{name}.{part}.bias", bias(STATE)
    yield f"{name}_ln.weight", norm()
    yield f"{name}_ln.bias", bias(STATE)


def feed_forward(name, successors):
    hidden = 4 * STATE
    looks_for = {(i, DIRECTIONS[token]): 1.0 for i, token in enumerate(successors)}
    adds = {(DIRECTIONS[after], i): NEXT_OVER_LAST for i, after in enumerate(successors.values())}
    yield f"{name}.mlp_ln.weight", norm()
    yield f"{name}.mlp_ln.bias", bias(STATE)
    yield f"{name}.mlp.0.weight", matrix(hidden, STATE, looks_for)
    yield f"{name}.mlp.0.bias", tensor(SINGLE, hidden, fill=-THRESHOLD)
    yield f"{name}.mlp.2.weight", matrix(STATE, hidden, adds)
    yield f"{name}.mlp.2.bias", bias(STATE)


def tensors():
    yield "encoder.positional_embedding", tensor(SINGLE, AUDIO_POSITIONS, STATE)
    yield "encoder.conv1.weight", tensor(HALF, STATE, MELS, 3)
    yield "encoder.conv1.bias", bias(STATE, 1)
    yield "encoder.conv2.weight", tensor(HALF, STATE, STATE, 3)
    yield "encoder.conv2.bias", bias(STATE, 1)
    yield "encoder.ln_post.weight", norm()
    yield "encoder.ln_post.bias", bias(STATE)
    yield "decoder.positional_embedding", tensor(SINGLE, TEXT_POSITIONS, STATE)
    yield "decoder.token_embedding.weight", matrix(
        VOCABULARY, STATE, {token_direction: 1.0 for token_direction in DIRECTIONS.items()}
    )
    yield "decoder.ln.weight", norm(CERTAINTY)
    yield "decoder.ln.bias", bias(STATE)
    yield from attention("encoder.blocks.0.attn")
    yield from feed_forward("encoder.blocks.0", {})
    yield from attention("decoder.blocks.0.attn")
    yield from attention("decoder.blocks.0.cross_attn")
    yield from feed_forward("decoder.blocks.0", SUCCESSORS)


def write(file):
    file.write(struct.pack("<I", 0x67676D6C))
    audio = (AUDIO_POSITIONS, STATE, 1, 1)
    text = (TEXT_POSITIONS, STATE, 1, 1)
    file.write(struct.pack("<11i", VOCABULARY, *audio, *text, MELS, HALF))
    file.write(struct.pack("<2i", MELS, SPECTRUM) + bytes(4 * MELS * SPECTRUM))
    vocabulary = WORDS + BLANKS
    file.write(struct.pack("<i", len(vocabulary)))
    for token in vocabulary:
        file.write(struct.pack("<i", len(token)) + token)
    for name, (kind, shape, values) in tensors():
        file.write(struct.pack("<3i", len(shape), len(name), kind))
        file.write(struct.pack(f"<{len(shape)}i", *reversed(shape)) + name.encode())
        file.write(struct.pack(f"<{len(values)}{'e' if kind == HALF else 'f'}", *values))


if __name__ == "__main__":
    if len(sys.argv) != 2:
        sys.exit(__doc__)
    with open(sys.argv[1], "wb") as model:
        write(model)
