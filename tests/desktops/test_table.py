import unittest

from table import cell, fallen, read, renewed

PAGE = """# Desktops

<!-- table -->
| | [Xfce 4.18 (X11)](desktops/xfce.png) | [sway 1.7 (Wayland)](desktops/sway.png) |
| --- | --- | --- |
| The icon | yes: after 1 s | yes: after 2 s |
| The lock | –: not tried |  |
| The menu | no: nothing | yes: 90×70 |
<!-- end of the table -->

## Also seen
"""


class TestTable(unittest.TestCase):
    def test_a_cell_begins_with_whether_the_row_holds(self):
        for holds, word in (True, 'yes'), (False, 'no'), (None, '–'):
            self.assertEqual(cell({'holds': holds, 'seen': 'a\n b|c'}), f'{word}: a b¦c')

    def test_a_page_is_read_as_it_was_written(self):
        self.assertEqual(read(PAGE), {
            'xfce': ('Xfce 4.18 (X11)', {'The icon': 'yes: after 1 s', 'The lock': '–: not tried',
                                         'The menu': 'no: nothing'}),
            'sway': ('sway 1.7 (Wayland)', {'The icon': 'yes: after 2 s', 'The menu': 'yes: 90×70'})})
        self.assertEqual(renewed(PAGE, read(PAGE)), PAGE.replace('| | [', '|  | ['))
        self.assertEqual(read('# Desktops\n\n<!-- table -->\n<!-- end of the table -->\n'), {})

    def test_a_new_column_leaves_the_others_and_the_text_alone(self):
        new = {'xfce': ('Xfce 5', {'The icon': 'no: none', 'The sky': 'yes: blue'})}
        page = renewed(PAGE, new | {'sway': read(PAGE)['sway']})
        self.assertEqual(read(page), new | {'sway': read(PAGE)['sway']})
        self.assertTrue(page.endswith('\n## Also seen\n'))
        self.assertTrue(page.startswith('# Desktops\n\n<!-- table -->\n'))

    def test_only_a_row_that_held_and_is_asked_again_falls(self):
        rows = {'yes: a': True, 'no: a': False, '–: a': False}
        for old, was_held in rows.items():
            for new in ('yes: b', 'no: b', '–: b', None):
                after = {'sway': ('', {} if new is None else {'The icon': new})}
                falls = was_held and new in ('no: b', '–: b')
                self.assertEqual(bool(fallen({'sway': ('', {'The icon': old})}, after)), falls, (old, new))
        self.assertEqual(fallen({}, {'sway': ('', {'The icon': 'no: b'})}), [])
        self.assertEqual(fallen(read(PAGE), {'xfce': ('', {'The icon': 'no: none'})}),
                         ['xfce: The icon: no: none (it was: yes: after 1 s)'])


if __name__ == '__main__':
    unittest.main()
