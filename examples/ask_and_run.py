"""Ask and run: asks for a level, shows a message box, and runs another script with the answer.

    ./vantrel run --show examples/ask_and_run.py

For an unattended run, give the answers on the command line:

    ./vantrel run --answer 40 --answer "Show it" examples/ask_and_run.py

Without a display and without answers, the script runs as if the user closed the question.
"""
import vantrel

if vantrel.get_active_view_id() < 0:
    vantrel.open_file("data/scene12.tif")

answer = vantrel.ask_user_for_string("Threshold", "Brightness level in percent of full scale:")
try:
    percent = int(answer)
except ValueError:
    percent = -1  # closed, left empty, or not a number

if not 0 <= percent <= 100:
    print("not a level from 0 to 100: %r" % answer)
else:
    pressed = vantrel.message_box("Threshold", "Show the pixels that reach %d %% of full scale?" % percent,
                                  "Show it", "Not now")
    if pressed == 1:
        # The other script reads the answer from the store. It could also see this script's variables.
        vantrel.set_global_variable_int("threshold.percent", percent)
        vantrel.run_script("tools/threshold.py")
        vantrel.show_notification("Showing the pixels that reach %d %% of full scale" % percent)
    else:
        print("nothing was changed")
