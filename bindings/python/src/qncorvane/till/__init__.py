"""A till in the terminal, to try a store by hand: `python3 -m qncorvane.till --store DIR`.

The full screen is `app`, which needs prompt_toolkit; a script of commands runs without it. What a till does is `model`, without
a terminal; `commands` is what may be typed, `view` what is shown.
"""
