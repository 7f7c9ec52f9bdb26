// Appended to a copy of the report by tst_lcdcfg_report: measures the page as
// the browser laid it out and leaves the result as JSON in <pre id="probe">.
(function () {
    const r = { layouts: 0, templates: 0, cells: 0, bad: [], faults: [], okFills: [], links: [] };
    const templates = new Set();
    const okFills = new Set();
    for (const svg of document.querySelectorAll('svg[data-layout]')) {
        r.layouts++;
        templates.add(svg.dataset.template);
        const template = svg.closest('[data-template="' + svg.dataset.template + '"]:not(svg)');
        if (!template) r.bad.push(svg.dataset.layout + ' outside its template box');
        const t = template ? template.getBoundingClientRect() : new DOMRect();
        const vb = svg.viewBox.baseVal;
        const box = svg.getBoundingClientRect();
        const k = box.width / vb.width;
        for (const rect of svg.querySelectorAll('rect[data-cell]')) {
            r.cells++;
            const id = svg.dataset.layout + '/' + rect.dataset.cell;
            const x = +rect.dataset.x, y = +rect.dataset.y, w = +rect.dataset.w, h = +rect.dataset.h;
            if (x < vb.x || y < vb.y || x + w > vb.x + vb.width || y + h > vb.y + vb.height)
                r.bad.push(id + ' outside the viewBox');
            const b = rect.getBoundingClientRect();
            if (b.left < box.left - 1 || b.top < box.top - 1 || b.right > box.right + 1 || b.bottom > box.bottom + 1)
                r.bad.push(id + ' drawn outside its picture');
            if (b.left < t.left || b.top < t.top || b.right > t.right || b.bottom > t.bottom)
                r.bad.push(id + ' drawn outside its template');
            if (w > 0 && h > 0 && (Math.abs(b.width - w * k) > 1.5 || Math.abs(b.height - h * k) > 1.5))
                r.bad.push(id + ' not drawn to scale');
            const fill = getComputedStyle(rect).fill;
            if (rect.dataset.fault) r.faults.push({ id: id, codes: rect.dataset.fault.split(' '), fill: fill });
            else okFills.add(fill);
        }
    }
    r.templates = templates.size;
    r.okFills = Array.from(okFills);
    for (const a of document.querySelectorAll('tr[data-code^="layout-"] a')) {
        const target = document.getElementById(a.getAttribute('href').slice(1));
        const marked = target && target.querySelector('rect[data-fault]');
        r.links.push({ code: a.closest('tr').dataset.code, target: target ? target.tagName : 'missing',
                       codes: marked ? marked.dataset.fault.split(' ') : [] });
    }
    const pre = document.createElement('pre');
    pre.id = 'probe';
    pre.textContent = JSON.stringify(r);
    document.body.append(pre);
})();
