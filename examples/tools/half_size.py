"""Opens the active view's image again, half as large. Added to the menu by menu_tools.py."""
import vantrel

img = vantrel.get_view_image()
small = img.resize(max(img.width // 2, 1), max(img.height // 2, 1))
view = vantrel.new_view_with_image(small, "Half size")
print("view %d: %d x %d" % (view, small.width, small.height))
