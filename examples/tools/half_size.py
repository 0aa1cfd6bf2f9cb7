"""Opens a new view with the active view's image at half size. menu_tools.py adds this script to the menu."""
import vantrel

img = vantrel.get_view_image()
small = img.resize(max(img.width // 2, 1), max(img.height // 2, 1))
view = vantrel.new_view_with_image(small, "Half size")
print("view %d: %d x %d" % (view, small.width, small.height))
