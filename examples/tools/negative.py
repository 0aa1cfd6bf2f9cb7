"""Turns what the active view shows into its negative. Added to the menu by menu_tools.py.

The stage stays in the view's processing chain: it can be switched off there, and it works on every later image.
"""
import vantrel

vantrel.add_chain_object("Invert")
print("view %d shows its negative" % vantrel.get_active_view_id())
