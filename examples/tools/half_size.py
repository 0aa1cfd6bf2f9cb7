"""Opens a new view with the active view's image at half size. menu_tools.py adds this script to the menu."""
import vantrel

img = vantrel.get_view_image()
# Without the four zeros, which mean the whole image, resize() would scale a single pixel.
small = img.resize(max(img.width // 2, 1), max(img.height // 2, 1), 0, 0, 0, 0)
view = vantrel.new_view_with_image(small, "Half size")
print("view %d: %d x %d, values from %d to %d" %
      (view, small.width, small.height, small.measure_rect()[0]["min"], small.measure_rect()[0]["max"]))
