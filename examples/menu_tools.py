"""Menu tools: adds a submenu of small tools to the Script menu.

Choose it in the viewer (Script, Run Script...), or run it with

    ./vantrel run examples/menu_tools.py

The tools are the scripts in the folder tools beside this one. Each item runs its script on the active view; its tool tip
says what it does. An item that is chosen while a script runs waits until that has ended.
"""
import vantrel

SUBMENU = "Tools"
TOOLS = (
    ("Brightness", "tools/brightness.py", "Show how bright the active view is"),
    ("Negative", "tools/negative.py", "Turn the active view into its negative"),
    ("Half Size", "tools/half_size.py", "Open the active view's image again, half as large"),
)

# Values left in the store outlive this run: the items are added once, however often the script is chosen.
if vantrel.get_global_variable_int("menu_tools.added") == 1:
    print("the tools are in the menu already")
else:
    for name, script, tip in TOOLS:
        vantrel.add_menu_item(name, script, SUBMENU, tip)
        print("added %s > %s" % (SUBMENU, name))
    vantrel.set_global_variable_int("menu_tools.added", 1)
    vantrel.show_notification("%d tools are in the menu Script > %s." % (len(TOOLS), SUBMENU))

# Without a view there is nothing to try them on.
if vantrel.get_active_view_id() < 0:
    vantrel.open_file("data/scene12.tif")
    for name, script, tip in TOOLS:
        vantrel.run_script(script)
    vantrel.tile_views()
