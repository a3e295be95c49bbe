#!/usr/bin/python3 -B
"""Puts what the stories saw into docs/desktops.md, and names the rows that held and no longer do.

    table.py COMMITTED RESULTS...             compares: the page as it is committed, folders of story.py
    table.py --write PAGE COMMITTED RESULTS...    also renews these desktops' columns and pictures there
"""

import argparse
import json
import re
import sys
from pathlib import Path

ORDER = ('xfce', 'lxqt', 'mate', 'sway', 'plasma', 'gnome')
BEGIN, END = '<!-- table -->', '<!-- end of the table -->'
WORDS = {True: 'yes', False: 'no', None: '–'}
PICTURE = 756  # points of width
COLOURS = 256


def cell(row):
    """“yes: what was seen”."""
    text = ' '.join(row['seen'].replace('|', '¦').split())
    return f'{WORDS[row["holds"]]}: {text}'


def read(page):
    """The table of a page: {desktop: (title, {question: cell})}, in the order of the columns."""
    between = re.search(f'{BEGIN}(.*){END}', page, re.DOTALL)
    lines = [[part.strip() for part in line.strip().strip('|').split('|')]
             for line in (between.group(1) if between else '').splitlines() if line.strip()]
    if not lines:
        return {}
    columns = {}
    for number, header in enumerate(lines[0][1:], 1):
        title, name = re.fullmatch(r'\[(.*)\]\(desktops/(\w+)\.png\)', header).groups()
        columns[name] = title, {line[0]: line[number] for line in lines[2:] if line[number]}
    return columns


def table(columns):
    """The lines of the table; questions in the order in which the newest columns ask them."""
    questions = []
    for _, cells in columns.values():
        questions += [question for question in cells if question not in questions]
    names = [name for name in ORDER if name in columns]
    lines = [['', *(f'[{columns[name][0]}](desktops/{name}.png)' for name in names)],
             ['---'] * (len(names) + 1)]
    lines += [[question, *(columns[name][1].get(question, '') for name in names)]
              for question in questions]
    return [f'| {" | ".join(line)} |' for line in lines]


def renewed(page, columns):
    """The page with that table in place of its own."""
    before, rest = page.split(BEGIN)
    after = rest.split(END)[1]
    return '\n'.join([before + BEGIN, *table(columns), END + after])


def fallen(before, after):
    """What held before and does not now, a line each. A question that is no longer asked has not fallen."""
    return [f'{name}: {question}: {cells[question]} (it was: {old})'
            for name, (_, cells) in after.items() if name in before
            for question, old in before[name][1].items()
            if question in cells and old.startswith('yes') and not cells[question].startswith('yes')]


def save_picture(source, target):
    from PIL import Image  # not where only the tables are tested
    image = Image.open(source).convert('RGB')
    image = image.resize((PICTURE, round(image.height * PICTURE / image.width)), Image.LANCZOS)
    image.quantize(COLOURS).save(target, optimize=True)


def main():
    parser = argparse.ArgumentParser(usage=__doc__)
    parser.add_argument('--write', type=Path)
    parser.add_argument('committed', type=Path)
    parser.add_argument('results', type=Path, nargs='+')
    options = parser.parse_args()
    seen = {}
    for folder in options.results:
        facts = json.loads((folder / 'rows.json').read_text())
        seen[facts['desktop']] = facts['title'], {question: cell(row) for question, row in facts['rows'].items()}
    if options.write:
        page = options.write.read_text()
        # The new columns first, for the order of their questions.
        columns = seen | {name: column for name, column in read(page).items() if name not in seen}
        options.write.write_text(renewed(page, columns))
        pictures = options.write.with_suffix('')
        pictures.mkdir(exist_ok=True)
        for name, folder in zip(seen, options.results):
            save_picture(folder / 'panel.png', pictures / f'{name}.png')
    if lost := fallen(read(options.committed.read_text()), seen):
        sys.exit('desktops: what held does not hold any more:\n' + '\n'.join(lost))


if __name__ == '__main__':
    main()
