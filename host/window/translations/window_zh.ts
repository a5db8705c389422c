<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="zh_CN" sourcelanguage="en">
<context>
    <name>Window</name>
    <message><source>%1 entities</source><translation>%1 个对象</translation></message>
    <message><source>&amp;About Tarn Image</source><translation>关于 Tarn Image(&amp;A)</translation></message>
    <message><source>&amp;Bars and lists</source><translation>工具栏和列表(&amp;B)</translation></message>
    <message><source>&amp;Bring the erased back</source><translation>恢复删除的对象(&amp;B)</translation></message>
    <message><source>&amp;Cancel</source><translation>取消(&amp;C)</translation></message>
    <message><source>&amp;Circle</source><translation>圆(&amp;C)</translation></message>
    <message><source>&amp;Close</source><translation>关闭(&amp;C)</translation></message>
    <message><source>&amp;Commands</source><translation>全部命令(&amp;C)</translation></message>
    <message><source>&amp;Convert files...</source><translation>转换影像文件(&amp;C)...</translation></message>
    <message><source>&amp;Coordinates of a point</source><translation>点坐标(&amp;C)</translation></message>
    <message><source>&amp;Copy</source><translation>复制(&amp;C)</translation></message>
    <message><source>&amp;Dark</source><translation>深色(&amp;D)</translation></message>
    <message><source>&amp;Delete</source><translation>删除(&amp;D)</translation></message>
    <message><source>&amp;Distance</source><translation>距离(&amp;D)</translation></message>
    <message><source>&amp;Draw</source><translation>绘图(&amp;D)</translation></message>
    <message><source>&amp;Edit</source><translation>编辑(&amp;E)</translation></message>
    <message><source>&amp;Enter</source><translation>确认(&amp;E)</translation></message>
    <message><source>&amp;Erase</source><translation>删除(&amp;E)</translation></message>
    <message><source>&amp;Erase entities without an image</source><translation>删除没有影像的实体(&amp;E)</translation></message>
    <message><source>&amp;File</source><translation>文件(&amp;F)</translation></message>
    <message><source>&amp;First steps</source><translation>入门(&amp;F)</translation></message>
    <message><source>&amp;Full screen</source><translation>全屏(&amp;F)</translation></message>
    <message><source>&amp;Help</source><translation>帮助(&amp;H)</translation></message>
    <message><source>&amp;Image</source><translation>影像(&amp;I)</translation></message>
    <message><source>&amp;Kinds of snaps</source><translation>捕捉类型(&amp;K)</translation></message>
    <message><source>&amp;Layers by prompts</source><translation>图层命令(&amp;L)</translation></message>
    <message><source>&amp;Let go</source><translation>取消选择(&amp;L)</translation></message>
    <message><source>&amp;Light</source><translation>浅色(&amp;L)</translation></message>
    <message><source>&amp;Line</source><translation>直线(&amp;L)</translation></message>
    <message><source>&amp;Load a module...</source><translation>加载模块(&amp;L)...</translation></message>
    <message><source>&amp;Modify</source><translation>修改(&amp;M)</translation></message>
    <message><source>&amp;Move</source><translation>移动(&amp;M)</translation></message>
    <message><source>&amp;New</source><translation>新建(&amp;N)</translation></message>
    <message><source>&amp;New sheet</source><translation>新建布局(&amp;N)</translation></message>
    <message><source>&amp;North up</source><translation>北方向上(&amp;N)</translation></message>
    <message><source>&amp;Object snaps</source><translation>对象捕捉(&amp;O)</translation></message>
    <message><source>&amp;Open...</source><translation>打开(&amp;O)...</translation></message>
    <message><source>&amp;Other commands</source><translation>其他命令(&amp;O)</translation></message>
    <message><source>&amp;Paste</source><translation>粘贴(&amp;P)</translation></message>
    <message><source>&amp;Polyline</source><translation>多段线(&amp;P)</translation></message>
    <message><source>&amp;Previous view</source><translation>上一视图(&amp;P)</translation></message>
    <message><source>&amp;Quit</source><translation>退出(&amp;Q)</translation></message>
    <message><source>&amp;Rectify...</source><translation>影像校正(&amp;R)...</translation></message>
    <message><source>&amp;Redo</source><translation>重做(&amp;R)</translation></message>
    <message><source>&amp;Regenerate</source><translation>重生成(&amp;R)</translation></message>
    <message><source>&amp;Rename</source><translation>重命名(&amp;R)</translation></message>
    <message><source>&amp;Repeat %1</source><translation>重复 %1(&amp;R)</translation></message>
    <message><source>To the &amp;front</source><translation>置于最前(&amp;F)</translation></message>
    <message><source>To the bac&amp;k</source><translation>置于最后(&amp;K)</translation></message>
    <message><source>&amp;Above or under others</source><translation>置于其他实体之上或之下(&amp;A)</translation></message>
    <message><source>M&amp;irror</source><translation>镜像(&amp;I)</translation></message>
    <message><source>Enter object ordering option [Above objects/Under objects/Front/Back] &lt;Back&gt;:</source><translation>输入显示顺序选项 [Above objects/Under objects/Front/Back] &lt;Back&gt;:</translation></message>
    <message><source>Erase the originals? [Yes/No] &lt;No&gt;:</source><translation>删除原来的实体? [Yes/No] &lt;No&gt;:</translation></message>
    <message><source>First point of the mirror:</source><translation>镜像线的第一点:</translation></message>
    <message><source>Second point of the mirror:</source><translation>镜像线的第二点:</translation></message>
    <message><source>&amp;Rotate</source><translation>旋转(&amp;R)</translation></message>
    <message><source>&amp;Save</source><translation>保存(&amp;S)</translation></message>
    <message><source>&amp;Scale</source><translation>缩放(&amp;S)</translation></message>
    <message><source>&amp;Sheet</source><translation>布局(&amp;S)</translation></message>
    <message><source>&amp;Sheets by prompts</source><translation>布局命令(&amp;S)</translation></message>
    <message><source>&amp;Snap to</source><translation>捕捉到(&amp;S)</translation></message>
    <message><source>&amp;Text</source><translation>文字(&amp;T)</translation></message>
    <message><source>&amp;Tools</source><translation>工具(&amp;T)</translation></message>
    <message><source>&amp;Twist</source><translation>旋转视图(&amp;T)</translation></message>
    <message><source>&amp;Undo</source><translation>撤销(&amp;U)</translation></message>
    <message><source>&amp;View</source><translation>视图(&amp;V)</translation></message>
    <message><source>&amp;What is this?</source><translation>对象信息(&amp;W)</translation></message>
    <message><source>&amp;Zoom to a window</source><translation>窗口缩放(&amp;Z)</translation></message>
    <message><source>(none yet)</source><translation>（还没有）</translation></message>
    <message><source>, too many to list values</source><translation>，数量太多，不列出数值</translation></message>
    <message><source>1 entity</source><translation>1 个对象</translation></message>
    <message><source>&lt;b&gt;What you see:&lt;/b&gt; an orthophoto in a drawing. The photo stays in its file; only the pixels that this view needs are read.</source><translation>&lt;b&gt;您看到的是：&lt;/b&gt;图形中的一幅正射影像。影像留在自己的文件里，只读取当前视图需要的像素。</translation></message>
    <message><source>About Tarn Image</source><translation>关于 Tarn Image</translation></message>
    <message><source>Add &amp;images...</source><translation>添加影像(&amp;I)...</translation></message>
    <message><source>Add &amp;point cloud...</source><translation>加载点云(&amp;P)...</translation></message>
    <message><source>Add images</source><translation>添加影像</translation></message>
    <message><source>Angle</source><translation>角度</translation></message>
    <message><source>Appearan&amp;ce</source><translation>外观(&amp;C)</translation></message>
    <message><source>As the &amp;system</source><translation>跟随系统(&amp;S)</translation></message>
    <message><source>Base point or [Displacement] &lt;Displacement&gt;:</source><translation>基点或 [Displacement] &lt;Displacement&gt;:</translation></message>
    <message><source>Base point or displacement:</source><translation>基点或位移:</translation></message>
    <message><source>Base point:</source><translation>基点:</translation></message>
    <message><source>Black or white</source><translation>黑或白</translation></message>
    <message><source>Blue</source><translation>蓝</translation></message>
    <message><source>By number...</source><translation>按编号...</translation></message>
    <message><source>C&amp;opy beside</source><translation>复制到旁边(&amp;O)</translation></message>
    <message><source>Cancel</source><translation>取消</translation></message>
    <message><source>Center</source><translation>圆心</translation></message>
    <message><source>Center X</source><translation>圆心 X</translation></message>
    <message><source>Center Y</source><translation>圆心 Y</translation></message>
    <message><source>Center point:</source><translation>圆心:</translation></message>
    <message><source>Choose a folder</source><translation>选择文件夹</translation></message>
    <message><source>Choose entities by clicks or a window – Enter ends</source><translation>单击或框选对象，按回车结束</translation></message>
    <message><source>Clarit&amp;y</source><translation>清晰度(&amp;Y)</translation></message>
    <message><source>Click a point or type its coordinates – Escape cancels</source><translation>单击一点或输入坐标，按 Esc 取消</translation></message>
    <message><source>Click the line and drag one of its blue squares. &lt;b&gt;Ctrl+Z&lt;/b&gt; takes it back.</source><translation>单击这条线，拖动一个蓝色方块。&lt;b&gt;Ctrl+Z&lt;/b&gt; 可撤销。</translation></message>
    <message><source>Click: make it the current one</source><translation>单击：置为当前</translation></message>
    <message><source>Close this drawing</source><translation>关闭此图形</translation></message>
    <message><source>Colour</source><translation>颜色</translation></message>
    <message><source>Colour, 1 to 255:</source><translation>颜色，1 到 255:</translation></message>
    <message><source>Command line</source><translation>命令行</translation></message>
    <message><source>Command:</source><translation>命令:</translation></message>
    <message><source>Commands that begin so</source><translation>以此开头的命令</translation></message>
    <message><source>Corner of the viewport or [ON/OFF/Fit]:</source><translation>视口的角点或 [ON/OFF/Fit]:</translation></message>
    <message><source>Corner of window, scale (nX) or [All/Center/Extents/Previous/Window]:</source><translation>窗口角点、比例 (nX) 或 [All/Center/Extents/Previous/Window]:</translation></message>
    <message><source>Current layer</source><translation>当前图层</translation></message>
    <message><source>Cyan</source><translation>青</translation></message>
    <message><source>Delete</source><translation>删除</translation></message>
    <message><source>Discard</source><translation>放弃</translation></message>
    <message><source>Displacement:</source><translation>位移:</translation></message>
    <message><source>Do not show this again</source><translation>不再显示</translation></message>
    <message><source>Draw</source><translation>绘图</translation></message>
    <message><source>Drawing</source><translation>图形</translation></message>
    <message><source>Drawing &amp;ground</source><translation>绘图背景(&amp;G)</translation></message>
    <message><source>Drop an image of your own on the window, or press &lt;b&gt;Ctrl+I&lt;/b&gt;; &lt;b&gt;Ctrl+S&lt;/b&gt; saves the drawing.</source><translation>把自己的影像拖到窗口上，或按 &lt;b&gt;Ctrl+I&lt;/b&gt;；&lt;b&gt;Ctrl+S&lt;/b&gt; 保存图形。</translation></message>
    <message><source>Drop image files on the window to add them.</source><translation>把影像文件拖到窗口上即可添加。</translation></message>
    <message><source>Easting and northing under the mouse</source><translation>鼠标处的东坐标和北坐标</translation></message>
    <message><source>Elevation</source><translation>标高</translation></message>
    <message><source>End X</source><translation>终点 X</translation></message>
    <message><source>End Y</source><translation>终点 Y</translation></message>
    <message><source>Endpoint</source><translation>端点</translation></message>
    <message><source>Escape leaves anything. F1 lists all commands.</source><translation>按 Esc 可退出任何操作。F1 列出全部命令。</translation></message>
    <message><source>Fetch more &amp;around the view</source><translation>视图外扩读取(&amp;A)</translation></message>
    <message><source>First corner:</source><translation>第一个角点:</translation></message>
    <message><source>First point:</source><translation>第一点:</translation></message>
    <message><source>First steps</source><translation>入门</translation></message>
    <message><source>Five things to try:</source><translation>试试这五件事：</translation></message>
    <message><source>Free</source><translation>解锁</translation></message>
    <message><source>Frozen</source><translation>冻结</translation></message>
    <message><source>Gray</source><translation>灰</translation></message>
    <message><source>Green</source><translation>绿</translation></message>
    <message><source>Height</source><translation>高度</translation></message>
    <message><source>Height &lt;2.5&gt;:</source><translation>高度 &lt;2.5&gt;:</translation></message>
    <message><source>Height or magnification (nX):</source><translation>高度或比例 (nX):</translation></message>
    <message><source>Image &amp;list</source><translation>影像列表(&amp;L)</translation></message>
    <message><source>Image &amp;servers...</source><translation>影像服务器(&amp;S)...</translation></message>
    <message><source>Images</source><translation>影像</translation></message>
    <message><source>Insertion</source><translation>插入点</translation></message>
    <message><source>Insertion point &lt;0,0&gt;:</source><translation>插入点 &lt;0,0&gt;:</translation></message>
    <message><source>Insertion point:</source><translation>插入点:</translation></message>
    <message><source>Intersection</source><translation>交点</translation></message>
    <message><source>Kind</source><translation>类型</translation></message>
    <message><source>Lang&amp;uage</source><translation>语言(&amp;U)</translation></message>
    <message><source>Layer</source><translation>图层</translation></message>
    <message><source>Layers</source><translation>图层</translation></message>
    <message><source>Layout [?/Delete/New/Rename/Set] &lt;Set&gt;:</source><translation>布局 [?/Delete/New/Rename/Set] &lt;Set&gt;:</translation></message>
    <message><source>Length</source><translation>长度</translation></message>
    <message><source>Light gray</source><translation>浅灰</translation></message>
    <message><source>Line type</source><translation>线型</translation></message>
    <message><source>Line type scale</source><translation>线型比例</translation></message>
    <message><source>Load a module</source><translation>加载模块</translation></message>
    <message><source>Loaded &amp;modules</source><translation>已加载的模块(&amp;M)</translation></message>
    <message><source>Locked</source><translation>锁定</translation></message>
    <message><source>Magenta</source><translation>洋红</translation></message>
    <message><source>Make current</source><translation>置为当前</translation></message>
    <message><source>Midpoint</source><translation>中点</translation></message>
    <message><source>Model and sheets</source><translation>模型和布局</translation></message>
    <message><source>Modify</source><translation>修改</translation></message>
    <message><source>Module to unload:</source><translation>要卸载的模块:</translation></message>
    <message><source>Modules [?/Load/Unload]:</source><translation>模块 [?/Load/Unload]:</translation></message>
    <message><source>Name</source><translation>名称</translation></message>
    <message><source>Name of the layer to be current:</source><translation>要置为当前的图层名:</translation></message>
    <message><source>Name of the new layer:</source><translation>新图层名:</translation></message>
    <message><source>Named &amp;views</source><translation>命名视图(&amp;V)</translation></message>
    <message><source>Names of the layers, or *:</source><translation>图层名，或 *:</translation></message>
    <message><source>Nearest</source><translation>最近点</translation></message>
    <message><source>New &amp;viewport</source><translation>新建视口(&amp;V)</translation></message>
    <message><source>New angle:</source><translation>新角度:</translation></message>
    <message><source>New layer</source><translation>新建图层</translation></message>
    <message><source>New length:</source><translation>新长度:</translation></message>
    <message><source>Next point or [Arc/Close/Line/Undo]:</source><translation>下一点或 [Arc/Close/Line/Undo]:</translation></message>
    <message><source>Next point or [Close/Undo]:</source><translation>下一点或 [Close/Undo]:</translation></message>
    <message><source>Next point or [Undo]:</source><translation>下一点或 [Undo]:</translation></message>
    <message><source>No</source><translation>否</translation></message>
    <message><source>Node</source><translation>节点</translation></message>
    <message><source>Nothing is chosen: click entities in the drawing.</source><translation>没有选择对象：请在图形中单击对象。</translation></message>
    <message><source>Number of steps to redo or [All/Last]:</source><translation>重做的步数或 [All/Last]:</translation></message>
    <message><source>Number of steps to undo or [BAck/BEgin/Control/End/Mark] &lt;1&gt;:</source><translation>撤销的步数或 [BAck/BEgin/Control/End/Mark] &lt;1&gt;:</translation></message>
    <message><source>Off</source><translation>关</translation></message>
    <message><source>On</source><translation>开</translation></message>
    <message><source>Open</source><translation>打开</translation></message>
    <message><source>Open &amp;recent</source><translation>最近打开的文件(&amp;R)</translation></message>
    <message><source>Open drawing</source><translation>打开图形</translation></message>
    <message><source>Open drawings</source><translation>打开的图形</translation></message>
    <message><source>Opposite corner:</source><translation>对角点:</translation></message>
    <message><source>Ort&amp;ho</source><translation>正交(&amp;H)</translation></message>
    <message><source>Ortho</source><translation>正交</translation></message>
    <message><source>P&amp;an</source><translation>平移(&amp;A)</translation></message>
    <message><source>P&amp;lot...</source><translation>打印(&amp;L)...</translation></message>
    <message><source>Pa&amp;n</source><translation>平移(&amp;N)</translation></message>
    <message><source>Point cloud with p&amp;osition...</source><translation>按位置附着点云(&amp;O)...</translation></message>
    <message><source>Point:</source><translation>点:</translation></message>
    <message><source>Pre&amp;vious view</source><translation>上一视图(&amp;V)</translation></message>
    <message><source>Press &lt;b&gt;Ctrl+L&lt;/b&gt;: the list of images. A check mark shows and hides an image, a double click zooms to it, the right button does the rest.</source><translation>按 &lt;b&gt;Ctrl+L&lt;/b&gt;：影像列表。勾选可显示或隐藏影像，双击缩放到影像，其余操作用右键。</translation></message>
    <message><source>Progress</source><translation>进度</translation></message>
    <message><source>Properties</source><translation>特性</translation></message>
    <message><source>Quadrant</source><translation>象限点</translation></message>
    <message><source>Radius</source><translation>半径</translation></message>
    <message><source>Radius or [Diameter]:</source><translation>半径或 [Diameter]:</translation></message>
    <message><source>Ready</source><translation>就绪</translation></message>
    <message><source>Red</source><translation>红</translation></message>
    <message><source>Redo s&amp;everal...</source><translation>重做多步(&amp;E)...</translation></message>
    <message><source>Remove objects:</source><translation>移除对象:</translation></message>
    <message><source>Rename</source><translation>重命名</translation></message>
    <message><source>Ro&amp;tate</source><translation>旋转(&amp;T)</translation></message>
    <message><source>Rotation angle &lt;0&gt;:</source><translation>旋转角度 &lt;0&gt;:</translation></message>
    <message><source>Rotation angle or [Reference]:</source><translation>旋转角度或 [Reference]:</translation></message>
    <message><source>Run a &amp;script...</source><translation>运行脚本(&amp;S)...</translation></message>
    <message><source>Save</source><translation>保存</translation></message>
    <message><source>Save &amp;as...</source><translation>另存为(&amp;A)...</translation></message>
    <message><source>Save &amp;picture...</source><translation>保存图片(&amp;P)...</translation></message>
    <message><source>Save as</source><translation>另存为</translation></message>
    <message><source>Save drawing as</source><translation>图形另存为</translation></message>
    <message><source>Scale factor or [Reference]:</source><translation>比例因子或 [Reference]:</translation></message>
    <message><source>Scale on this screen, when a drawing unit is a metre</source><translation>屏幕比例（绘图单位为米时）</translation></message>
    <message><source>Script</source><translation>脚本</translation></message>
    <message><source>Second point or &lt;use first point as displacement&gt;:</source><translation>第二点或 &lt;用第一点作为位移&gt;:</translation></message>
    <message><source>Second point:</source><translation>第二点:</translation></message>
    <message><source>Select objects:</source><translation>选择对象:</translation></message>
    <message><source>Sho&amp;w everything</source><translation>显示全部(&amp;W)</translation></message>
    <message><source>Shows very large georeferenced images in drawings.</source><translation>在图形中显示超大的地理参考影像。</translation></message>
    <message><source>Snaps</source><translation>捕捉</translation></message>
    <message><source>Standard</source><translation>标准</translation></message>
    <message><source>Start X</source><translation>起点 X</translation></message>
    <message><source>Start Y</source><translation>起点 Y</translation></message>
    <message><source>Start point of the text:</source><translation>文字起点:</translation></message>
    <message><source>Stretch to point or [Base/eXit]:</source><translation>拉伸到点或 [Base/eXit]:</translation></message>
    <message><source>Stretch to point or [eXit]:</source><translation>拉伸到点或 [eXit]:</translation></message>
    <message><source>System &amp;variables</source><translation>系统变量(&amp;V)</translation></message>
    <message><source>Te&amp;xt window</source><translation>文本窗口(&amp;X)</translation></message>
    <message><source>Text</source><translation>文字</translation></message>
    <message><source>Text:</source><translation>文字:</translation></message>
    <message><source>Thawed</source><translation>解冻</translation></message>
    <message><source>The command waits for an input – Escape cancels</source><translation>命令等待输入，按 Esc 取消</translation></message>
    <message><source>They differ</source><translation>各不相同</translation></message>
    <message><source>Turn by the &amp;line of sight</source><translation>动态旋转视图(&amp;L)</translation></message>
    <message><source>Turn the wheel over the photo to zoom in on that place; drag with the middle button to move. A double click of it shows everything.</source><translation>在影像上转动滚轮可缩放该处；按住中键拖动可平移；双击中键显示全部。</translation></message>
    <message><source>Twist of the view</source><translation>视图旋转角</translation></message>
    <message><source>Twist of the view in degrees:</source><translation>视图旋转角（度）:</translation></message>
    <message><source>Type &lt;b&gt;L&lt;/b&gt; and Enter, click two points, press Enter: a line. With &lt;b&gt;F3&lt;/b&gt; ends and middles of lines are taken exactly.</source><translation>输入 &lt;b&gt;L&lt;/b&gt; 并回车，单击两点，再按回车：一条直线。按 &lt;b&gt;F3&lt;/b&gt; 可精确捕捉端点和中点。</translation></message>
    <message><source>Type a command, or F1 for all of them</source><translation>输入命令，F1 列出全部命令</translation></message>
    <message><source>Undo se&amp;veral...</source><translation>撤销多步(&amp;V)...</translation></message>
    <message><source>Value</source><translation>值</translation></message>
    <message><source>Variable name or ?:</source><translation>变量名或 ?:</translation></message>
    <message><source>Version of the drawing</source><translation>图形版本</translation></message>
    <message><source>Vertices</source><translation>顶点数</translation></message>
    <message><source>View [?/Delete/Restore/Save]:</source><translation>视图 [?/Delete/Restore/Save]:</translation></message>
    <message><source>Waiting for your choice – Escape leaves it</source><translation>等待您的选择，按 Esc 离开</translation></message>
    <message><source>What the program waits for</source><translation>程序状态</translation></message>
    <message><source>What was typed and answered</source><translation>命令记录</translation></message>
    <message><source>Wheel: zoom. Middle button: pan; twice: show everything.</source><translation>滚轮：缩放。中键：平移；双击：显示全部。</translation></message>
    <message><source>Work in the &amp;model</source><translation>进入模型空间(&amp;M)</translation></message>
    <message><source>Work on the s&amp;heet</source><translation>进入图纸空间(&amp;H)</translation></message>
    <message><source>Working – Escape stops it</source><translation>正在处理，按 Esc 停止</translation></message>
    <message><source>X</source><translation>X</translation></message>
    <message><source>Y</source><translation>Y</translation></message>
    <message><source>Yellow</source><translation>黄</translation></message>
    <message><source>Yes</source><translation>是</translation></message>
    <message><source>Zoom &amp;extents</source><translation>范围缩放(&amp;E)</translation></message>
    <message><source>Zoom &amp;window</source><translation>窗口缩放(&amp;W)</translation></message>
    <message><source>Images on servers</source><translation>服务器上的影像</translation></message>
    <message><source>Add</source><translation>添加</translation></message>
    <message><source>Folders</source><translation>文件夹</translation></message>
    <message><source>Search in this folder and below</source><translation>在此文件夹及其下级中搜索</translation></message>
    <message><source>Size</source><translation>大小</translation></message>
    <message><source>Changed</source><translation>修改时间</translation></message>
    <message><source>Drawing's view</source><translation>图形视图</translation></message>
    <message><source>All footprints</source><translation>全部范围</translation></message>
    <message><source>Where they lie</source><translation>位置</translation></message>
    <message><source>No preview</source><translation>无预览</translation></message>
    <message><source>Not every folder was searched.</source><translation>并非所有文件夹都已搜索。</translation></message>
    <message><source>%1 image</source><translation>%1 幅影像</translation></message>
    <message><source>%1 images</source><translation>%1 幅影像</translation></message>
    <message><source>Reading ...</source><translation>正在读取…</translation></message>
    <message><source>Wheel: zoom. Drag: move. Click: choose; with Ctrl: choose more.</source><translation>滚轮：缩放。拖动：移动。单击：选择；按住 Ctrl：选择更多。</translation></message>
    <message><source>of</source><translation>于</translation></message>
    <message><source>%1 gone</source><translation>已用 %1</translation></message>
    <message><source>%1 gone, about %2 left</source><translation>已用 %1，约剩 %2</translation></message>
    <message><source>Working</source><translation>正在处理</translation></message>
    <message><source>running</source><translation>正在处理</translation></message>
    <message><source>done</source><translation>完成</translation></message>
    <message><source>skipped</source><translation>已跳过</translation></message>
    <message><source>failed</source><translation>失败</translation></message>
    <message><source>waiting</source><translation>等待</translation></message>
    <message><source>File</source><translation>文件</translation></message>
    <message><source>State</source><translation>状态</translation></message>
    <message><source>Remarks</source><translation>说明</translation></message>
    <message><source>Add files ...</source><translation>添加文件...</translation></message>
    <message><source>Add folder ...</source><translation>添加文件夹...</translation></message>
    <message><source>Remove</source><translation>移除</translation></message>
    <message><source>Browse ...</source><translation>浏览...</translation></message>
    <message><source>Add files</source><translation>添加文件</translation></message>
    <message><source>Add folder</source><translation>添加文件夹</translation></message>
    <message><source>Folder</source><translation>文件夹</translation></message>
    <message><source>&quot;%1&quot;: two servers have this name.</source><translation>“%1”：有两个服务器使用此名称。</translation></message>
    <message><source>%1 Save it as a drawing of R2000?</source><translation>%1 另存为 R2000 图形吗？</translation></message>
    <message><source>%1 exists. Replace it?</source><translation>%1 已存在。要替换吗？</translation></message>
    <message><source>%1 has changes that are not saved.</source><translation>%1 有未保存的更改。</translation></message>
    <message><source>%1 was changed by another program since it was opened. Replace it?</source><translation>%1 打开后被其他程序修改过。要替换吗？</translation></message>
    <message><source>%1: a folder's names hold no &quot;:&quot;, &quot;.&quot; or &quot;..&quot;.</source><translation>%1：文件夹名称中不能有“:”、“.”或“..”。</translation></message>
    <message><source>%1: a port is a number from 1 to 65535.</source><translation>%1：端口是 1 到 65535 之间的数字。</translation></message>
    <message><source>%1: only http and https are possible.</source><translation>%1：只能使用 http 和 https。</translation></message>
    <message><source>%1: port 443 is for https only.</source><translation>%1：443 端口仅用于 https。</translation></message>
    <message><source>%1: there is no such file of certificates.</source><translation>%1：没有这个证书文件。</translation></message>
    <message><source>%1: this is no HOST or HOST:PORT.</source><translation>%1：这不是“主机”或“主机:端口”。</translation></message>
    <message><source>&amp;Browse...</source><translation>浏览(&amp;B)...</translation></message>
    <message><source>&amp;Centre on the paper</source><translation>居中打印(&amp;C)</translation></message>
    <message><source>&amp;Fit to the paper</source><translation>布满图纸(&amp;F)</translation></message>
    <message><source>&amp;Layout</source><translation>布局(&amp;L)</translation></message>
    <message><source>&amp;Offset x, y</source><translation>偏移 x、y(&amp;O)</translation></message>
    <message><source>&amp;Plot</source><translation>打印(&amp;P)</translation></message>
    <message><source>&amp;Rotation of the drawing</source><translation>图形旋转(&amp;R)</translation></message>
    <message><source>&amp;Size</source><translation>大小(&amp;S)</translation></message>
    <message><source>&amp;Width × height</source><translation>宽 × 高(&amp;W)</translation></message>
    <message><source>A server's name, address and file hold no control characters.</source><translation>服务器的名称、地址和文件中不能有控制字符。</translation></message>
    <message><source>A user name or password does not belong into the address of a server.</source><translation>服务器地址中不能写用户名或密码。</translation></message>
    <message><source>Address</source><translation>地址</translation></message>
    <message><source>Area</source><translation>范围</translation></message>
    <message><source>Custom</source><translation>自定义</translation></message>
    <message><source>Display</source><translation>显示</translation></message>
    <message><source>Extents</source><translation>范围（全部）</translation></message>
    <message><source>Fil&amp;e</source><translation>文件(&amp;E)</translation></message>
    <message><source>File of certificates</source><translation>证书文件</translation></message>
    <message><source>Image server</source><translation>影像服务器</translation></message>
    <message><source>Image servers</source><translation>影像服务器</translation></message>
    <message><source>Image servers: saved.</source><translation>影像服务器：已保存。</translation></message>
    <message><source>Images are loaded from</source><translation>影像来源</translation></message>
    <message><source>Landscape</source><translation>横向</translation></message>
    <message><source>Later</source><translation>以后</translation></message>
    <message><source>Layout</source><translation>布局</translation></message>
    <message><source>Limits</source><translation>图形界限</translation></message>
    <message><source>Local files</source><translation>本地文件</translation></message>
    <message><source>Named view</source><translation>命名视图</translation></message>
    <message><source>Offset x</source><translation>偏移 x</translation></message>
    <message><source>Offset y</source><translation>偏移 y</translation></message>
    <message><source>Only in the tab that is shown, outside its viewports</source><translation>只能在当前显示的标签页中、视口之外选取</translation></message>
    <message><source>Other commands</source><translation>其他命令</translation></message>
    <message><source>Output</source><translation>输出</translation></message>
    <message><source>P&amp;ick window</source><translation>选取窗口(&amp;I)</translation></message>
    <message><source>PDF (lines stay lines)</source><translation>PDF（线条保持矢量）</translation></message>
    <message><source>PNG picture</source><translation>PNG 图片</translation></message>
    <message><source>Paper</source><translation>图纸</translation></message>
    <message><source>Paper = &amp;drawing units</source><translation>图纸 = 图形单位(&amp;D)</translation></message>
    <message><source>Paper units = drawing units; for metres on millimetres 1000=500 is 1:500</source><translation>图纸单位 = 图形单位；图形以米、图纸以毫米计时，1000=500 即 1:500</translation></message>
    <message><source>Plot</source><translation>打印</translation></message>
    <message><source>Plot to</source><translation>打印到</translation></message>
    <message><source>Portrait</source><translation>纵向</translation></message>
    <message><source>Program</source><translation>程序</translation></message>
    <message><source>Reco&amp;ver copies</source><translation>恢复自动副本(&amp;V)</translation></message>
    <message><source>Scale and place</source><translation>比例和位置</translation></message>
    <message><source>Servers (a name and password are taken from the environment or a netrc file)</source><translation>服务器（用户名和密码取自环境变量或 netrc 文件）</translation></message>
    <message><source>The address of a server is missing.</source><translation>缺少服务器地址。</translation></message>
    <message><source>The program ended before changes of %1 were saved; there are automatic copies.</source><translation>程序在保存 %1 的更改之前结束；有自动副本。</translation></message>
    <message><source>The program ended before changes of %1 were saved; there is an automatic copy.</source><translation>程序在保存 %1 的更改之前结束；有一个自动副本。</translation></message>
    <message><source>To load images from a server, add one to the list.</source><translation>要从服务器加载影像，请在列表中添加一个服务器。</translation></message>
    <message><source>Two corners in the drawing</source><translation>在图形中指定两个角点</translation></message>
    <message><source>View &amp;name</source><translation>视图名称(&amp;N)</translation></message>
    <message><source>Wh&amp;at is plotted</source><translation>打印范围(&amp;A)</translation></message>
    <message><source>Width</source><translation>宽</translation></message>
    <message><source>Window</source><translation>窗口</translation></message>
    <message><source>The plot needs a file name.</source><translation>打印需要文件名。</translation></message>
    <message><source>There is nothing to plot: draw something first, or choose another area.</source><translation>没有可打印的内容：请先绘图，或选择其他范围。</translation></message>
    <message><source>The area to plot is empty: choose another one.</source><translation>打印范围为空：请选择其他范围。</translation></message>
    <message><source>The area to plot falls outside the paper: centre it, or choose another scale.</source><translation>打印范围落在图纸之外：请居中，或选择其他比例。</translation></message>
    <message><source>%1 is no scale: two numbers above zero as 1=500, or Fit.</source><translation>%1 不是比例：请输入两个大于零的数，如 1=500，或 Fit。</translation></message>
    <message><source>add a point cloud</source><translation>添加点云</translation></message>
    <message><source>add a point cloud at a position, scaled and turned</source><translation>按位置、比例和旋转添加点云</translation></message>
    <message><source>add images to the drawing</source><translation>向图形添加影像</translation></message>
    <message><source>begin a drawing</source><translation>新建图形</translation></message>
    <message><source>bring back what was erased last</source><translation>恢复最近删除的对象</translation></message>
    <message><source>choose image servers</source><translation>选择影像服务器</translation></message>
    <message><source>close this drawing</source><translation>关闭当前图形</translation></message>
    <message><source>convert image files to GeoTIFF, IMG or JPEG</source><translation>将影像文件转换为 GeoTIFF、IMG 或 JPEG</translation></message>
    <message><source>copy entities beside themselves</source><translation>在旁边复制对象</translation></message>
    <message><source>copy entities for another drawing</source><translation>复制对象到剪贴板</translation></message>
    <message><source>draw a circle</source><translation>画圆</translation></message>
    <message><source>draw a polyline of lines and arcs</source><translation>画由直线和圆弧组成的多段线</translation></message>
    <message><source>draw everything anew</source><translation>重新生成全部</translation></message>
    <message><source>draw straight lines</source><translation>画直线</translation></message>
    <message><source>end the program</source><translation>退出程序</translation></message>
    <message><source>fetch more of the images around the view</source><translation>多读取视图周围的影像</translation></message>
    <message><source>inches</source><translation>英寸</translation></message>
    <message><source>list all commands</source><translation>列出全部命令</translation></message>
    <message><source>list, load and unload modules</source><translation>列出、加载和卸载模块</translation></message>
    <message><source>load a module</source><translation>加载模块</translation></message>
    <message><source>make a viewport on a sheet</source><translation>在布局上建立视口</translation></message>
    <message><source>make and set layers</source><translation>建立和设置图层</translation></message>
    <message><source>make entities larger or smaller</source><translation>缩放对象</translation></message>
    <message><source>make, rename, delete and show sheets</source><translation>建立、重命名、删除和显示布局</translation></message>
    <message><source>measure distance and angle between two points</source><translation>测量两点间的距离和角度</translation></message>
    <message><source>move entities</source><translation>移动对象</translation></message>
    <message><source>move the view</source><translation>平移视图</translation></message>
    <message><source>open a drawing</source><translation>打开图形</translation></message>
    <message><source>open automatic copies after a crash</source><translation>程序意外结束后打开自动副本</translation></message>
    <message><source>paste what was copied</source><translation>粘贴</translation></message>
    <message><source>plot to a PDF or PNG file</source><translation>打印到 PDF 或 PNG 文件</translation></message>
    <message><source>put an image into its place by control points</source><translation>用控制点纠正影像</translation></message>
    <message><source>redo one step</source><translation>重做一步</translation></message>
    <message><source>redo several steps</source><translation>重做多步</translation></message>
    <message><source>remove entities</source><translation>删除对象</translation></message>
    <message><source>remove image entities that have lost their image</source><translation>删除丢失影像的影像实体</translation></message>
    <message><source>run the lines of a file</source><translation>运行脚本文件</translation></message>
    <message><source>save the view as a picture</source><translation>将视图保存为图片</translation></message>
    <message><source>save this drawing</source><translation>保存当前图形</translation></message>
    <message><source>save under another name or version</source><translation>以其他名称或版本保存</translation></message>
    <message><source>save, restore and delete named views</source><translation>保存、恢复和删除命名视图</translation></message>
    <message><source>show and set system variables</source><translation>显示和设置系统变量</translation></message>
    <message><source>show images coarser and faster, or finer</source><translation>以较粗（快）或较细的分辨率显示影像</translation></message>
    <message><source>show more, or less and larger</source><translation>缩放视图</translation></message>
    <message><source>show the coordinates of a point</source><translation>显示点的坐标</translation></message>
    <message><source>show the list of images</source><translation>显示影像列表</translation></message>
    <message><source>show what entities are</source><translation>显示对象信息</translation></message>
    <message><source>mirror entities about a line</source><translation>按轴线镜像对象</translation></message>
    <message><source>turn entities</source><translation>旋转对象</translation></message>
    <message><source>turn the view</source><translation>旋转视图</translation></message>
    <message><source>turn the view by the line of sight</source><translation>按视线旋转视图</translation></message>
    <message><source>undo one step</source><translation>撤销一步</translation></message>
    <message><source>undo several steps</source><translation>撤销多步</translation></message>
    <message><source>work in the model inside a viewport</source><translation>在视口中的模型里工作</translation></message>
    <message><source>work on the sheet</source><translation>在布局上工作</translation></message>
    <message><source>write a line of text</source><translation>写一行文字</translation></message>
    <message><source>%1 × %2 mm are plotted at %3 drawing units a millimetre (1 : %6 where they are metres).
The page has %4 × %5 pixels.</source><translation>打印 %1 × %2 毫米，每毫米 %3 个图形单位（图形以米计时为 1 : %6）。
页面为 %4 × %5 像素。</translation></message>
    <message><source>Sa&amp;ve these settings with the layout</source><translation>将这些设置保存到布局(&amp;V)</translation></message>
    <message><source>For&amp;mat</source><translation>格式(&amp;M)</translation></message>
    <message><source>draw entities over all others</source><translation>将对象置于最前</translation></message>
    <message><source>draw entities over or under others</source><translation>将对象置于其他对象之上或之下</translation></message>
    <message><source>draw entities under all others</source><translation>将对象置于最后</translation></message>
    <message><source>Drawings</source><translation>图形</translation></message>
    <message><source>%1 drawing</source><translation>%1 图形</translation></message>
</context>
</TS>
