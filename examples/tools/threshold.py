"""Shows in the active view what is brighter than a level. Run by ask_and_run.py, which leaves the level behind."""
import vantrel

percent = vantrel.get_global_variable_int("threshold.percent")
if percent < 0:
    percent = 50  # nobody has left one yet

img = vantrel.get_view_image()
level = img.data_saturation * percent / 100
vantrel.add_chain_object("Threshold", {"level": level})
share = vantrel.get_view_image().measure_rect()[0]["mean"] / img.data_saturation
print("%.1f %% of the picture reach %d %% of full scale (level %g)" % (100 * share, percent, level))
