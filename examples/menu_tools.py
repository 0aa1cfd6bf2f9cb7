"""Menu tools: adds a submenu of small tools to the Script menu.

    ./vantrel run --show examples/menu_tools.py

In the viewer you can also choose it with Script > Run Script....

The tools are the scripts in the folder tools next to this script. Each item runs its script on the active view, and its
tooltip says what the script does. An item that is chosen while a script runs waits until that script has ended.
"""
import vantrel

SUBMENU = "Tools"
TOOLS = (
    ("Brightness", "tools/brightness.py", "Show how bright the active view is"),
    ("Negative", "tools/negative.py", "Turn the active view into its negative"),
    ("Half Size", "tools/half_size.py", "Open the active view's image again, half as large"),
)

# The store keeps its values after this run, so the items are added only once, however often the script runs.
if vantrel.get_global_variable_int("menu_tools.added") == 1:
    print("the tools are already in the menu")
else:
    for name, script, tip in TOOLS:
        vantrel.add_menu_item(name, script, SUBMENU, tip)
        print("added %s > %s" % (SUBMENU, name))
    vantrel.set_global_variable_int("menu_tools.added", 1)
    vantrel.show_notification("%d tools are in the menu Script > %s." % (len(TOOLS), SUBMENU))

# If there is no view, open a picture and try the tools on it.
if vantrel.get_active_view_id() < 0:
    vantrel.open_file("data/scene12.tif")
    for name, script, tip in TOOLS:
        vantrel.run_script(script)
    vantrel.tile_views()
