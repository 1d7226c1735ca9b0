#!/usr/bin/python3
"""Walks the running program's accessible tree over AT-SPI, as a screen reader sees it.

    atspi_walk.py --windows 'Dashboard:4,Calculator:25,...' [--tab] [--dump FILE]

Each entry of --windows is a window title (a regular expression searched in the title) and the
least number of controls a user can act on that the window must show; a window whose painted
keys or buttons are invisible to a screen reader shows fewer. For every window it reports each
such control without a name or with a role that does not say what it does, each access key used
twice, and with --tab each control the Tab key skips and each place where it traps the focus.
--dump writes role, name and value of every control, one per line, for the windows named by
--dump-windows. Prints the counts; exits 1 when anything is wrong.
"""

import argparse
import os
import re
import subprocess
import sys
import time

import pyatspi

# Roles that say what a control does; a control with an action but another role (a label
# that works as a button) has no role a screen reader can announce as something to press.
ACTION_ROLES = {
    pyatspi.ROLE_PUSH_BUTTON, pyatspi.ROLE_CHECK_BOX, pyatspi.ROLE_RADIO_BUTTON,
    pyatspi.ROLE_TOGGLE_BUTTON, pyatspi.ROLE_MENU_ITEM, pyatspi.ROLE_CHECK_MENU_ITEM,
    pyatspi.ROLE_RADIO_MENU_ITEM, pyatspi.ROLE_LIST_ITEM, pyatspi.ROLE_TEXT,
    pyatspi.ROLE_ENTRY, pyatspi.ROLE_PASSWORD_TEXT, pyatspi.ROLE_SLIDER,
    pyatspi.ROLE_SPIN_BUTTON, pyatspi.ROLE_COMBO_BOX, pyatspi.ROLE_PAGE_TAB,
    pyatspi.ROLE_LINK, pyatspi.ROLE_TABLE_CELL, pyatspi.ROLE_TREE_ITEM,
    pyatspi.ROLE_MENU, pyatspi.ROLE_PAGE_TAB_LIST, pyatspi.ROLE_LIST, pyatspi.ROLE_TABLE,
    pyatspi.ROLE_TREE, pyatspi.ROLE_TREE_TABLE,
}
# Parts of a control that the control itself names: the line of an editable combo box, the
# scroll bars of a list or an editor.
PART_ROLES = {pyatspi.ROLE_SCROLL_BAR}
# Controls that carry their own text: an empty editor still has a name from its label or
# description, but its text is its value.
TEXT_ROLES = {pyatspi.ROLE_TEXT, pyatspi.ROLE_ENTRY, pyatspi.ROLE_PASSWORD_TEXT}
CONTAINER_ROLES = {pyatspi.ROLE_FRAME, pyatspi.ROLE_WINDOW, pyatspi.ROLE_DIALOG,
                   pyatspi.ROLE_APPLICATION}


def states(node):
    try:
        return node.getState()
    except Exception:
        return None


def showing(node):
    s = states(node)
    return s is not None and s.contains(pyatspi.STATE_SHOWING)


def actions(node):
    try:
        act = node.queryAction()
    except NotImplementedError:
        return []
    return [(act.getName(i), act.getKeyBinding(i)) for i in range(act.nActions)]


def value_of(node):
    try:
        return '%g' % node.queryValue().currentValue
    except NotImplementedError:
        pass
    if node.getRole() in TEXT_ROLES:
        try:
            text = node.queryText()
            return text.getText(0, min(text.characterCount, 80))
        except NotImplementedError:
            pass
    return ''


def is_actionable(node, role):
    if role in CONTAINER_ROLES or role in PART_ROLES:
        return False
    parent = node.parent
    if parent is not None and parent.getRole() == pyatspi.ROLE_COMBO_BOX:
        return False
    if role in ACTION_ROLES:
        return role not in TEXT_ROLES or states(node).contains(pyatspi.STATE_EDITABLE)
    # Every widget that takes the keyboard offers "SetFocus"; only other actions make a
    # control, and a focusable container (a tab widget handing the keyboard to its tabs) is none.
    if any(name.lower() != 'setfocus' for name, _ in actions(node)):
        return True
    if role in (pyatspi.ROLE_FILLER, pyatspi.ROLE_PANEL) and not node.childCount:
        return states(node).contains(pyatspi.STATE_FOCUSABLE)  # a canvas drawn by hand
    return states(node).contains(pyatspi.STATE_FOCUSABLE) and role not in (
        pyatspi.ROLE_FILLER, pyatspi.ROLE_PANEL, pyatspi.ROLE_SPLIT_PANE, pyatspi.ROLE_SCROLL_PANE)


def walk(node, depth=0):
    """The showing nodes under node, depth first, in the order the tree gives them."""
    for i in range(node.childCount):
        child = node.getChildAtIndex(i)
        if child is None or not showing(child):
            continue
        yield child, depth
        if depth < 30:
            yield from walk(child, depth + 1)


def find_application(timeout):
    desktop = pyatspi.Registry.getDesktop(0)
    end = time.time() + timeout
    while time.time() < end:
        for i in range(desktop.childCount):
            app = desktop.getChildAtIndex(i)
            if app is not None and app.name.lower() == 'vantora':
                return app
        time.sleep(0.2)
    return None


def find_window(app, pattern, timeout):
    end = time.time() + timeout
    while time.time() < end:
        for i in range(app.childCount):
            win = app.getChildAtIndex(i)
            if win is not None and re.search(pattern, win.name or '') and showing(win):
                return win
        time.sleep(0.2)
    return None


def describe(node):
    return '%s %r' % (node.getRoleName(), node.name)


def check_window(win, least):
    """The window's counts and the problems found in it."""
    problems = []
    found = named = 0
    keys = {}
    for node, _ in walk(win):
        role = node.getRole()
        if not is_actionable(node, role):
            continue
        found += 1
        name = (node.name or '').strip() or (node.description or '').strip()
        # A canvas the program paints itself is a drawing area, which has no better role.
        has_role = role in ACTION_ROLES or (role in (pyatspi.ROLE_FILLER, pyatspi.ROLE_PANEL)
                                            and not node.childCount)
        if name and has_role:
            named += 1
        if not name:
            problems.append('no name: %s' % describe(node))
        if not has_role:
            problems.append('no role for what it does: %s' % describe(node))
        for _, binding in actions(node):
            for key in (binding or '').split(';'):
                key = key.strip().lower()
                if key.startswith(('<alt>', 'alt+')):
                    keys.setdefault(key, []).append(node.name)
    for key, names in sorted(keys.items()):
        if len(names) > 1:
            problems.append('access key %s used by %s' % (key, ', '.join(map(repr, names))))
    if found < least:
        problems.append('only %d controls a user can act on, expected at least %d' % (found, least))
    return found, named, problems


# Items report the focus of the list or tab bar they are in; the focus is on a control.
ITEM_ROLES = {pyatspi.ROLE_LIST_ITEM, pyatspi.ROLE_PAGE_TAB, pyatspi.ROLE_TABLE_CELL,
              pyatspi.ROLE_TREE_ITEM}


def focused_in(win):
    """The control with the keyboard: the deepest focused node with a name (a canvas rather
    than the area that hands the keyboard on to it, an editor rather than its viewport)."""
    best = None
    for node, depth in walk(win):
        s = states(node)
        if s.contains(pyatspi.STATE_FOCUSED) and node.getRole() not in ITEM_ROLES:
            rank = (bool((node.name or '').strip()), depth)
            if best is None or rank > best[1]:
                best = (node, rank)
    return best[0] if best else None


def key_of(node):
    """An identity for a node that survives new proxies: its path of child indexes."""
    path = []
    while node is not None and node.getRole() != pyatspi.ROLE_APPLICATION:
        path.append(node.getIndexInParent())
        node = node.parent
    return tuple(reversed(path))


def check_tab_order(win, title):
    """Tab from the window's first control round to it again; every focusable control must be
    reached once, and the focus must move on each press."""
    focusable = {}
    for node, _ in walk(win):
        s = states(node)
        # Tab passes over what is switched off (Undo with nothing to undo).
        if (s.contains(pyatspi.STATE_FOCUSABLE) and s.contains(pyatspi.STATE_ENABLED)
                and node.getRole() not in CONTAINER_ROLES
                and node.getRole() not in ITEM_ROLES and is_actionable(node, node.getRole())):
            focusable[key_of(node)] = describe(node)
    if not focusable:
        return []
    wid = subprocess.run(['xdotool', 'search', '--onlyvisible', '--name', title],
                         capture_output=True, text=True).stdout.split()
    if not wid:
        return ['window %r not found on the X server' % title]
    subprocess.run(['xdotool', 'windowactivate', '--sync', wid[0]], capture_output=True)
    time.sleep(0.2)
    seen = []
    names = {}
    key = 'Tab'
    for _ in range(2 * len(focusable) + 4):
        # Round to the first stop again: the cycle is complete.
        if len(seen) > 1 and seen[-1] == seen[0]:
            break
        subprocess.run(['xdotool', 'key', key])
        time.sleep(0.08)
        node = focused_in(win)
        key = 'Tab'
        if node is not None:
            seen.append(key_of(node))
            names[seen[-1]] = describe(node)
            # An editor keeps Tab as a character; F6 moves on from it.
            s = states(node)
            if s.contains(pyatspi.STATE_MULTI_LINE) and s.contains(pyatspi.STATE_EDITABLE):
                key = 'F6'
        elif states(win).contains(pyatspi.STATE_FOCUSED):
            # The window itself takes the keyboard (a calculator's typed keys): a stop.
            seen.append(('window',))
            names[seen[-1]] = 'the window'
        else:
            seen.append(None)
    problems = []
    for a, b in zip(seen, seen[1:]):
        if a is not None and a == b:
            problems.append('Tab does not leave %s' % names.get(a, str(a)))
            break
    if None in seen:
        before = seen[seen.index(None) - 1] if seen.index(None) > 0 else None
        problems.append('Tab takes the focus to nothing a screen reader can see (after %s)'
                        % names.get(before, 'the start'))
    if os.environ.get('ATSPI_WALK_DEBUG'):
        print('Tab order in %s: %s' % (title, ' > '.join(names.get(k, 'nothing') for k in seen)))
    reached = set(seen)
    for key, text in focusable.items():
        # Tab stops once in a group of choices (the checked one); the arrow keys move in it.
        grouped = text.startswith(('check box', 'radio button', 'toggle button')) and any(
            k[:-1] == key[:-1] and focusable.get(k, '').split(' ')[0] == text.split(' ')[0]
            for k in reached if k and k != ('window',))
        # A control that hands the keyboard to its part (a tab widget to its tab bar).
        proxied = key[:-1] in reached
        if key not in reached and not grouped and not proxied:
            problems.append('Tab never reaches %s' % text)
    return problems


def dump(win, out):
    out.write('== %s\n' % win.name)
    for node, depth in walk(win):
        role = node.getRole()
        s = states(node)
        if (role in (pyatspi.ROLE_FILLER, pyatspi.ROLE_PANEL) and not node.name
                and not s.contains(pyatspi.STATE_FOCUSABLE)):
            continue
        flags = [n for n, st in (('focusable', pyatspi.STATE_FOCUSABLE),
                                 ('checked', pyatspi.STATE_CHECKED),
                                 ('pressed', pyatspi.STATE_PRESSED),
                                 ('disabled', None)) if st is not None and s.contains(st)]
        if not s.contains(pyatspi.STATE_ENABLED):
            flags.append('disabled')
        about = (node.description or '').strip()
        out.write('%s%s | %s | %s%s%s\n' % ('  ' * depth, node.getRoleName(), node.name,
                                            value_of(node),
                                            ' [%s]' % ','.join(flags) if flags else '',
                                            ' (%s)' % about if about else ''))


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--windows', default='')
    parser.add_argument('--read', help='WINDOW:NAME prints the name of the first control in '
                        'the window whose name starts with NAME (a live value: "Display: 42")')
    parser.add_argument('--tab', action='store_true')
    parser.add_argument('--dump')
    parser.add_argument('--dump-windows', default='Calculator|Dashboard')
    args = parser.parse_args()

    app = find_application(15)
    if app is None:
        print('FAIL: the program did not appear on the accessibility bus')
        return 1
    if args.read:
        title, _, prefix = args.read.partition(':')
        win = find_window(app, title, 10)
        for node, _ in walk(win) if win is not None else []:
            if (node.name or '').startswith(prefix):
                print(node.name)
                return 0
        print('FAIL: nothing named %r in %r' % (prefix, title))
        return 1
    failures = 0
    total_found = total_named = 0
    dump_out = open(args.dump, 'w') if args.dump else None
    for entry in args.windows.split(','):
        title, _, least = entry.rpartition(':')
        win = find_window(app, title, 10)
        if win is None:
            print('FAIL: no window %r on the accessibility bus' % title)
            failures += 1
            continue
        found, named, problems = check_window(win, int(least))
        if args.tab:
            problems += check_tab_order(win, win.name)
        total_found += found
        total_named += named
        print('%-28s controls %3d, with name and role %3d' % (win.name, found, named))
        for problem in problems:
            print('FAIL: %s: %s' % (win.name, problem))
        failures += len(problems)
        if dump_out and re.search(args.dump_windows, win.name):
            dump(win, dump_out)
    if dump_out:
        dump_out.close()
    print('TOTAL controls %d, with name and role %d, problems %d' % (total_found, total_named, failures))
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
