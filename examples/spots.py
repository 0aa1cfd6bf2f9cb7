"""Finds bright spots in a picture: the module beside the script count_spots.py. It does nothing by itself."""
from typing import List, NamedTuple, Set, Tuple

import vantrel

Pixel = Tuple[int, int]


class Spot(NamedTuple):
    """A bright spot: its centre and the number of its pixels."""

    x: float
    y: float
    size: int


def find(image: vantrel.Image, level: int) -> List[Spot]:
    """Return the spots of pixels above a level, in the order of their first rows."""
    bright = [(x, y) for y in range(image.height) for x in range(image.width) if image.get_pixel_value(x, y) > level]
    left = set(bright)
    return [_spot(_take_neighbours(first, left)) for first in bright if first in left]


def _take_neighbours(first: Pixel, left: Set[Pixel]) -> List[Pixel]:
    """Remove all pixels that touch each other from a set and return them."""
    left.remove(first)
    found = [first]
    for x, y in found:  # grows meanwhile
        for neighbour in ((x - 1, y), (x + 1, y), (x, y - 1), (x, y + 1)):
            if neighbour in left:
                left.remove(neighbour)
                found.append(neighbour)
    return found


def _spot(pixels: List[Pixel]) -> Spot:
    count = len(pixels)
    return Spot(sum(x for x, _ in pixels) / count, sum(y for _, y in pixels) / count, count)
