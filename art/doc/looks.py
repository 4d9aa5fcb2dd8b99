# SPDX-License-Identifier: CC0-1.0
#
# What was judged by looking and not by measuring, from looked.txt. Each judgement counts for the
# pictures that were looked at: their sum stands beside it, and other pictures are to be looked at
# again.

import collections
import os
import zlib

import pieces

SOURCE = os.path.join(pieces.ART, "doc", "looked.txt")

Look = collections.namedtuple("Look", "piece answer question remark")


def sum_of_piece(described, piece):
    """Sum of all files of one piece."""
    sums = "".join(file.sum for file in described if file.piece == piece)
    return f"{zlib.crc32(sums.encode()):08x}"


def read(described, path=SOURCE):
    """All judgements; those of an earlier version say so."""
    found = []
    with open(path, encoding="utf-8") as file:
        lines = [line.rstrip("\n") for line in file if line.strip() and not line.startswith("#")]
    for line in lines:
        try:
            piece, seen, answer, question, remark = (part.strip() for part in line.split("|"))
        except ValueError:
            raise pieces.ArtError(f"{SOURCE}: not `piece | sum | yes or no | question | remark`: "
                                  f"{line}")
        now = sum_of_piece(described, piece)
        if seen != now:
            answer = f"look again (was {answer}; sum now {now})"
        found.append(Look(piece, answer, question, remark))
    return found
