"""Shows how bright the image of the active view is. menu_tools.py adds this script to the menu."""
import vantrel

img = vantrel.get_view_image()
parts = []
for channel in img.measure_rect():
    parts.append("%s %.1f %%" % (channel["name"], 100 * channel["mean"] / img.data_saturation))
vantrel.show_notification("Brightness: " + ", ".join(parts))
print("brightness of view %d: %s" % (vantrel.get_active_view_id(), ", ".join(parts)))
