"""Shows the active view's image as a negative. menu_tools.py adds this script to the menu.

The stage stays in the view's processing chain, where the user can switch it off, and processes every later image.
"""
import vantrel

vantrel.add_chain_object("Invert")
print("view %d shows its negative" % vantrel.get_active_view_id())
