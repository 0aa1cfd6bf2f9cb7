"""Finds the sharpest of several pictures. A pool of processes compares them on all cores.

    ./vantrel run examples/process_pool.py

A thread would not help: only one thread at a time executes Python code. Processes compute side by side, and the window
stays alive meanwhile. They cannot use the module vantrel: give them numbers and bytes.
"""
import array
import concurrent.futures
import multiprocessing
from typing import List, Tuple

import vantrel

FACTORS = (1, 2, 3, 4, 6)  # by how much the pictures are blurred


def sharpness(rows: List[bytes]) -> float:
    """The mean square of the difference between neighbours in a row. Runs in a process of the pool."""
    total = count = 0
    for row in rows:
        values = array.array("H", row)
        total += sum((right - left) ** 2 for left, right in zip(values, values[1:]))
        count += len(values) - 1
    return total / count


def rows_of(image: vantrel.Image) -> List[bytes]:
    """The rows of a picture with one channel of 9 to 16 bits, without the padding at their ends."""
    pixels, size = image.get_image_data_raw(), 2 * image.width
    stride = len(pixels) // image.height
    return [pixels[start:start + size] for start in range(0, stride * image.height, stride)]


def blurred(image: vantrel.Image, factor: int) -> vantrel.Image:
    small = image.resize(image.width // factor, image.height // factor, 0, 0, 0, 0)
    return small.resize(image.width, image.height, 0, 0, 0, 0)


def main() -> None:
    picture = vantrel.Image()
    picture.from_file("data/scene12.tif")
    pictures = [rows_of(blurred(picture, factor)) for factor in FACTORS]

    # A spawned process starts with a fresh interpreter and imports this file; it takes over nothing of the viewer.
    context = multiprocessing.get_context("spawn")
    with concurrent.futures.ProcessPoolExecutor(mp_context=context) as pool:
        results: List[Tuple[int, float]] = list(zip(FACTORS, pool.map(sharpness, pictures)))
    for factor, result in results:
        print("blurred by %d: sharpness %8.2f" % (factor, result))
    print("the sharpest is blurred by", max(results, key=lambda entry: entry[1])[0])


if __name__ == "__main__":  # not in the processes of the pool, which import this file
    main()
