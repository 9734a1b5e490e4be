#!/usr/bin/python3
"""Runs a GoogleTest program and judges it by its own end.

    judge-test-program.py PROGRAM [GTEST_FLAG...]

The program passes when every test that it lists (under the same flags) ran and
none failed, as the summary it writes at its end says (--gtest_output=json),
and its exit status is 0. A program that dies part way writes no summary, and
one that ends early lists tests that never ran: both fail, whatever their exit
status, so that a sanitizer told to exit with 0 can't make them pass. The
program's own output passes through; the verdict is the last line, prefixed
with the program's name. Exit status 0 when it passed, 1 when not.
"""
import json
import os
import signal
import subprocess
import sys
import tempfile


def listed_tests(program, flags):
    """The full names of the tests that the program would run, or None."""
    listing = subprocess.run([program, '--gtest_list_tests', *flags],
                             stdout=subprocess.PIPE, check=False)
    if listing.returncode != 0:
        return None
    tests, suite = [], ''
    for line in listing.stdout.decode(errors='replace').splitlines():
        name = line.split('#', 1)[0].strip()
        if not name:
            continue
        if line.startswith(' '):
            tests.append(suite + name)
        else:
            suite = name
    # A disabled test is listed but never runs.
    return [t for t in tests if 'DISABLED_' not in t]


def summary_of(path):
    """The tests of the summary as {name: failed}, or None without one."""
    try:
        with open(path, encoding='utf-8') as stream:
            summary = json.load(stream)
    except (OSError, ValueError):
        return None
    return {suite['name'] + '.' + test['name']: bool(test.get('failures'))
            for suite in summary.get('testsuites', [])
            for test in suite.get('testsuite', [])
            if test.get('status') == 'RUN'}


def ending(status):
    if status < 0:
        return 'killed by ' + signal.Signals(-status).name
    return 'exit status %d' % status


def some(names):
    return ', '.join(names[:5]) + (', ...' if len(names) > 5 else '')


def verdict(program, flags):
    """(passed, text) for one run of the program."""
    expected = listed_tests(program, flags)
    if expected is None:
        return False, 'could not list its tests'
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, 'summary.json')
        status = subprocess.run([program, '--gtest_output=json:' + path,
                                 *flags], check=False).returncode
        ran = summary_of(path)
    if ran is None:
        return False, ('died before its end (%s) with %d tests listed: it '
                       'wrote no summary' % (ending(status), len(expected)))
    missing = [t for t in expected if t not in ran]
    if missing:
        return False, '%d of %d tests ran (%s); not run: %s' % (
            len(expected) - len(missing), len(expected), ending(status),
            some(missing))
    failed = [t for t, bad in ran.items() if bad]
    if failed:
        return False, '%d of %d tests failed: %s' % (
            len(failed), len(expected), some(failed))
    if status != 0:
        return False, 'all %d tests passed, but it ended with %s' % (
            len(expected), ending(status))
    return True, 'all %d tests ran and passed' % len(expected)


def main(argv):
    if len(argv) < 2:
        print('usage: judge-test-program.py PROGRAM [GTEST_FLAG...]',
              file=sys.stderr)
        return 2
    passed, text = verdict(argv[1], argv[2:])
    sys.stdout.flush()
    print('%s: %s' % (os.path.basename(argv[1]), text), flush=True)
    return 0 if passed else 1


if __name__ == '__main__':
    sys.exit(main(sys.argv))
