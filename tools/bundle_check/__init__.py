"""Tells whether a plug-in bundle will load on a Mac, without one. scripts/check-bundle runs it."""
