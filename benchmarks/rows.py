"""The rows of the tables of scripts/bench.sh."""
import dataclasses


@dataclasses.dataclass(frozen=True)
class Row:
    """The benchmarks work/own and work/peer, and the highest ratio of their times that is accepted."""
    work: str
    peer: str
    goal: float
    systems: str = "linux"
    # Whether both are kept on one core. Work of several processes or threads is not.
    one_core: bool = True
    rounds: int = 21


ROWS = [
    Row("size", "du", 1.00, one_core=False, rounds=9),
    Row("size", "win32", 1.00, "windows", rounds=9),
    Row("sizeMillion", "du", 1.00, one_core=False, rounds=5),
    Row("remove", "rm", 1.00, one_core=False, rounds=9),
    Row("remove", "win32", 1.00, "windows", rounds=9),
    Row("queue", "turns", 1.30, rounds=9),
    Row("queueOfChildren", "turns", 1.30, rounds=9),
    Row("info", "dom", 1.10, rounds=9),
    Row("fastAppend", "write", 1.15),
    Row("fastAppend", "spdlog", 1.00),
    Row("fastAppend", "win32", 1.15, "windows", rounds=9),
    Row("append", "write", 1.10),
    Row("append", "win32", 1.10, "windows", rounds=9),
    Row("truncation", "kernel", 1.10),
    Row("truncation", "win32", 1.10, "windows", rounds=9),
    Row("threads", "spdlog", 1.00, one_core=False, rounds=9),
    Row("list", "shell", 1.05, one_core=False, rounds=9),
    Row("compress", "shell", 1.03, one_core=False, rounds=5),
    Row("extract", "shell", 1.03, one_core=False, rounds=5),
    Row("command", "process", 1.10, one_core=False),
    Row("counter", "pread", 1.50),
    Row("toQStringAscii", "qt", 1.05),
    Row("toQStringMixed", "qt", 1.05),
    Row("toStdStringAscii", "qt", 1.05),
    Row("toStdStringMixed", "qt", 1.05),
    Row("start", "qt", 1.10, one_core=False),
]

# The benchmark whose counter "memory" is the memory that a million waiting tasks take, and the most
# that is accepted, in bytes.
MEMORY = "growth/queue/1000000"
MEMORY_GOAL = 250e6
