"""The parts of tools/fuzz."""
