"""Measures how many small faults of the product the tests catch; the command is tools/mutations."""
