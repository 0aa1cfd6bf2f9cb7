"""Processes that a script forks: they end by themselves, and neither warn about nor disturb the viewer's threads."""
import multiprocessing
import os
import sys
import threading
import time


def status(child):
    code = os.waitpid(child, 0)[1]
    return code >> 8 if code & 0x7F == 0 else -(code & 0x7F)


begin = time.monotonic()
for expected, leave in [(3, lambda: os._exit(3)), (4, lambda: sys.exit(4)), (-6, os.abort)]:
    child = os.fork()
    if child == 0:
        leave()
    assert status(child) == expected, expected

read, write = os.pipe()
child = os.fork()
if child == 0:
    # Comes to the end of the script, and waits for its thread there.
    threading.Timer(0.2, os.write, (write, b"done")).start()
else:
    assert os.read(read, 10) == b"done"
    assert status(child) == 0
    with multiprocessing.get_context("fork").Pool(2) as pool:
        assert pool.map(abs, [-1, -2, -3]) == [1, 2, 3]
    process = multiprocessing.get_context("fork").Process(target=time.sleep, args=(600,))
    process.start()
    process.terminate()
    process.join()
    assert process.exitcode == -15, process.exitcode
    assert time.monotonic() - begin < 60
