"""The proofs of the promises: which there are, how one is run and recorded, and the page that shows the figures."""
