"""Shows the pixels of the active view that reach a level. ask_and_run.py stores the level and runs this script."""
import vantrel

percent = vantrel.get_global_variable_int("threshold.percent")
if percent < 0:
    percent = 50  # no level is stored

img = vantrel.get_view_image()
level = img.data_saturation * percent / 100
vantrel.add_chain_object("Threshold", {"level": level})
share = vantrel.get_view_image().measure_rect()[0]["mean"] / img.data_saturation
print("%.1f %% of the picture reaches %d %% of full scale (level %g)" % (100 * share, percent, level))
