"""The viewer's own Python side. The viewer imports its modules before it runs the first script; they are not for scripts."""
