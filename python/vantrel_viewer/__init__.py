"""The viewer's own Python side. The viewer imports its modules before it runs the first script; they are not for scripts.

Every start waits for these modules, so they import little. Annotations are not evaluated, and the names that only they use
are imported for type checkers alone: `typing` takes longer to import than all modules here.
"""

TYPE_CHECKING = False  # type checkers take a name like this for true
